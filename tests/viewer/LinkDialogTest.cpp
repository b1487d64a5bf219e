// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/LinkDialog.h"

#include "support/Widgets.h"
#include "viewer/Desktop.h"
#include "viewer/ViewerFixture.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QPushButton>
#include <QTest>

namespace quillo {
namespace {

class LinkDialogTest : public ViewerFixture
{
protected:
    /// A document with a link in the middle of its page; the link is clicked.
    LinkDialog* follow(const QByteArray& address)
    {
        PDFWriter writer;
        writer.addPage(
            "", "/Annots[<</Type/Annot/Subtype/Link/Border[0 0 0]/Rect[100 600 500 700]/A<</S/URI/URI(" +
                    address + ")>>>>]");
        const QString path = m_folder.path(QStringLiteral("links.pdf"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(writer.bytes());
        file.close();
        show();
        open(QUrl::fromLocalFile(path));
        const QPoint place = view().pageToView(0)->map(QPointF(300, 650)).toPoint();
        EXPECT_TRUE(QTest::qWaitFor([&] {
            QTest::mouseMove(view().viewport(), place + QPoint(1, 0));
            QTest::mouseMove(view().viewport(), place);
            return view().viewport()->cursor().shape() == Qt::PointingHandCursor;
        }));
        QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, place);
        return waitForDialog<LinkDialog>();
    }

    static void press(const LinkDialog* dialog, const QString& name)
    {
        for (auto* button : dialog->findChildren<QPushButton*>()) {
            if (button->text().remove(u'&') == name)
                return QTest::mouseClick(button, Qt::LeftButton);
        }
        FAIL() << "there is no button " << name.toStdString();
    }

    /// What can be read in the dialog.
    static QStringList texts(const LinkDialog* dialog)
    {
        QStringList texts = visibleTexts(*dialog);
        for (QString& text : texts)
            text.remove(QChar(0x200B));
        return texts;
    }

    static bool isClosed()
    {
        return QTest::qWaitFor([] { return !isDialogOpen<LinkDialog>(); });
    }

    Desktop m_desktop;
};

TEST_F(LinkDialogTest, ShowsWhereTheLinkLeadsBeforeItIsOpened)
{
    const LinkDialog* dialog = follow("https://quillo.example/a?b=c");
    ASSERT_TRUE(dialog);
    EXPECT_TRUE(m_desktop.opened.isEmpty());
    EXPECT_EQ(
        texts(dialog), QStringList({
                           QStringLiteral("Open a page of “quillo.example” in the browser?"),
                           QStringLiteral("https://quillo.example/a?b=c"),
                       }));
    press(dialog, QStringLiteral("Open in Browser"));
    EXPECT_TRUE(isClosed());
    EXPECT_EQ(m_desktop.opened, QList<QUrl>({QUrl(QStringLiteral("https://quillo.example/a?b=c"))}));
}

TEST_F(LinkDialogTest, AsksBeforeALetterIsWritten)
{
    const LinkDialog* dialog = follow("mailto:someone@quillo.example");
    ASSERT_TRUE(dialog);
    EXPECT_EQ(texts(dialog).first(), QStringLiteral("Write an e-mail to “someone@quillo.example”?"));
    press(dialog, QStringLiteral("Write E-mail"));
    EXPECT_EQ(m_desktop.opened, QList<QUrl>({QUrl(QStringLiteral("mailto:someone@quillo.example"))}));
}

TEST_F(LinkDialogTest, OpensNothingWhenItIsCancelled)
{
    LinkDialog* dialog = follow("https://quillo.example/a");
    ASSERT_TRUE(dialog);
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_TRUE(isClosed());
    EXPECT_TRUE(m_desktop.opened.isEmpty());
}

TEST_F(LinkDialogTest, OpensWithTheReturnKey)
{
    LinkDialog* dialog = follow("https://quillo.example/a");
    ASSERT_TRUE(dialog);
    QTest::keyClick(dialog, Qt::Key_Return);
    EXPECT_EQ(m_desktop.opened.size(), 1);
}

TEST_F(LinkDialogTest, CopiesTheAddressInstead)
{
    const LinkDialog* dialog = follow("https://quillo.example/copied");
    ASSERT_TRUE(dialog);
    press(dialog, QStringLiteral("Copy Address"));
    EXPECT_TRUE(isClosed());
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("https://quillo.example/copied"));
    EXPECT_TRUE(m_desktop.opened.isEmpty());
}

TEST_F(LinkDialogTest, ShowsForeignLettersAndNamesBeforeTheHostAsWhatTheyAre)
{
    const LinkDialog* dialog = follow("https://bank.example@xn--bcher-kva.example/");
    ASSERT_TRUE(dialog);
    EXPECT_EQ(
        texts(dialog).first(), QStringLiteral("Open a page of “xn--bcher-kva.example” in the browser?"));
}

TEST_F(LinkDialogTest, FitsOnTheScreenWithALongAddress)
{
    const LinkDialog* dialog = follow("https://quillo.example/" + QByteArray(1900, 'a'));
    ASSERT_TRUE(dialog);
    EXPECT_LE(dialog->width(), 500);
    EXPECT_LE(dialog->height(), 500);
}

} // namespace
} // namespace quillo
