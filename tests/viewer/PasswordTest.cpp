// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/DocumentPasswords.h"
#include "pdf/PDFDocument.h"
#include "support/Printing.h"
#include "support/Widgets.h"
#include "viewer/DocumentOpening.h"
#include "viewer/PasswordDialog.h"
#include "viewer/ViewerFixture.h"

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QVBoxLayout>

namespace quillo {
namespace {

const QString wrongText = QStringLiteral("That password is not the right one. Try again.");

class PasswordTest : public ViewerFixture
{
protected:
    /// Types into the dialog that asks, and presses one of its buttons.
    static void answer(const QString& password, const QString& button)
    {
        auto* dialog = waitForDialog<PasswordDialog>();
        ASSERT_TRUE(dialog) << "nobody asks for a password";
        QTest::keyClicks(dialog->findChild<QLineEdit*>(), password);
        for (auto* candidate : dialog->findChildren<QPushButton*>()) {
            if (candidate->text().remove(QLatin1Char('&')) == button) {
                QTest::mouseClick(candidate, Qt::LeftButton);
                return;
            }
        }
        FAIL() << "the dialog has no such button";
    }

    static void giveUp()
    {
        auto* dialog = waitForDialog<PasswordDialog>();
        ASSERT_TRUE(dialog);
        QTest::keyClick(dialog, Qt::Key_Escape);
    }
};

TEST_F(PasswordTest, AsksForThePasswordOfAnEncryptedFile)
{
    show();
    const QUrl url = encryptedDocument(QStringLiteral("key"), QStringLiteral("asked.pdf"));
    QSignalSpy resolved(m_viewer.get(), &PDFViewer::documentResolved);
    m_state.setUrl(url);
    auto* dialog = waitForDialog<PasswordDialog>();
    ASSERT_TRUE(dialog);
    EXPECT_TRUE(visibleTexts(*dialog).contains(QStringLiteral("“asked.pdf” is protected.")));
    EXPECT_FALSE(visibleTexts(*dialog).contains(wrongText));
    EXPECT_EQ(dialog->findChild<QLineEdit*>()->echoMode(), QLineEdit::Password);
    EXPECT_TRUE(resolved.isEmpty()) << "nothing is settled while the question is open";
    answer(QStringLiteral("key"), QStringLiteral("Open"));
    ASSERT_TRUE(resolved.wait(10000));
    ASSERT_TRUE(view().document());
    EXPECT_EQ(view().pageCount(), 2);
}

TEST_F(PasswordTest, AsksOverItsWindowOnceThatIsOnTheScreen)
{
    QWidget window;
    window.setGeometry(120, 150, 600, 420);
    m_state.setUrl(encryptedDocument(QStringLiteral("key"), QStringLiteral("early.pdf")));
    m_viewer = std::make_unique<PDFViewer>(&m_state, m_analytics.service());
    // Files are opened one after another, so the first one has an answer when this one has.
    DocumentOpening::begin(documentOf(1).toLocalFile(), 1.0).result.waitForFinished();
    QCoreApplication::processEvents();
    EXPECT_FALSE(isDialogOpen<PasswordDialog>()) << "there is no window that it could be over";

    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(m_viewer.get());
    window.show();
    auto* dialog = waitForDialog<PasswordDialog>();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->parentWidget(), &window);
    const QPoint distance = dialog->geometry().center() - window.geometry().center();
    EXPECT_LT(distance.manhattanLength(), 60) << "x " << distance.x() << ", y " << distance.y();
    m_viewer.reset();
}

TEST_F(PasswordTest, AsksAgainAfterAWrongOneUntilItIsRight)
{
    show();
    m_state.setUrl(encryptedDocument(QStringLiteral("key"), QStringLiteral("again.pdf")));
    for (int i = 0; i < 3; ++i) {
        answer(QStringLiteral("wrong"), QStringLiteral("Open"));
        auto* dialog = waitForDialog<PasswordDialog>();
        ASSERT_TRUE(dialog);
        EXPECT_TRUE(shows(*dialog, wrongText));
    }
    answer(QStringLiteral("key"), QStringLiteral("Open"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return view().document() != nullptr; }));
}

TEST_F(PasswordTest, TakesReturnForOpen)
{
    show();
    m_state.setUrl(encryptedDocument(QStringLiteral("key"), QStringLiteral("return.pdf")));
    auto* dialog = waitForDialog<PasswordDialog>();
    ASSERT_TRUE(dialog);
    auto* field = dialog->findChild<QLineEdit*>();
    EXPECT_TRUE(QTest::qWaitFor([&] { return dialog->focusWidget() == field; })) << "typing starts at once";
    QTest::keyClicks(field, QStringLiteral("key"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view().document() != nullptr; }));
}

TEST_F(PasswordTest, KeepsWhatItHasWhenTheUserGivesUp)
{
    showDocument(3);
    const auto before = view().document();
    QSignalSpy resolved(m_viewer.get(), &PDFViewer::documentResolved);
    m_state.setUrl(encryptedDocument(QStringLiteral("key"), QStringLiteral("cancelled.pdf")));
    answer(QStringLiteral("wrong"), QStringLiteral("Open"));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return isDialogOpen<PasswordDialog>() &&
               visibleTexts(*waitForDialog<PasswordDialog>()).contains(wrongText);
    }));
    giveUp();
    ASSERT_TRUE(resolved.wait(10000));
    EXPECT_EQ(view().document(), before);
    EXPECT_FALSE(isDialogOpen<PasswordDialog>());
}

TEST_F(PasswordTest, RemembersTheRightPasswordForOthersWhoOpenTheFile)
{
    show();
    const QUrl url = encryptedDocument(QStringLiteral("key"), QStringLiteral("remembered.pdf"));
    m_state.setUrl(url);
    answer(QStringLiteral("key"), QStringLiteral("Open"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view().document() != nullptr; }));
    EXPECT_EQ(DocumentPasswords::shared().password(url.toLocalFile()), QStringLiteral("key"));
    // Opened once more it asks no question.
    open(documentOf(1, QStringLiteral("between.pdf")));
    open(url);
    EXPECT_FALSE(isDialogOpen<PasswordDialog>());
    EXPECT_EQ(view().document()->documentURL(), url);
}

TEST_F(PasswordTest, StopsAskingWhenAnotherFileIsOpened)
{
    show();
    m_state.setUrl(encryptedDocument(QStringLiteral("key"), QStringLiteral("left.pdf")));
    ASSERT_TRUE(waitForDialog<PasswordDialog>());
    open(documentOf(2));
    EXPECT_TRUE(QTest::qWaitFor([] { return !isDialogOpen<PasswordDialog>(); }));
    EXPECT_EQ(view().pageCount(), 2);
}

TEST_F(PasswordTest, OpensWithoutAQuestionWhatOnlyHasAnOwnerPassword)
{
    show();
    open(encryptedDocument(QString(), QStringLiteral("owner only.pdf")));
    EXPECT_FALSE(isDialogOpen<PasswordDialog>());
    EXPECT_TRUE(view().document());
}

} // namespace
} // namespace quillo
