// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/Limits.h"
#include "pdf/PDFAnnotation.h"
#include "pdfview/FormNotice.h"
#include "pdfview/FormViewFixture.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace pdf {
namespace {

/// A form with a field of several lines and one below it.
class FormRefusalTest : public FormViewFixture
{
protected:
    void SetUp() override
    {
        m_file.add("/FT/Tx/Ff 4096/T(notes)/V(old)/DA(/Helv 10 Tf 0 g)/Rect[50 250 250 350]");
        m_file.add("/FT/Tx/T(name)/DA(/Helv 10 Tf 0 g)/Rect[50 100 250 120]");
        showForm();
    }

    /// Opens the field and pastes more than a form field takes.
    void pasteTooMuch()
    {
        click("notes");
        m_edit = editor<QPlainTextEdit>();
        ASSERT_NE(m_edit, nullptr);
        QApplication::clipboard()->setText(tooLong());
        QTest::keyClick(m_edit, Qt::Key_A, Qt::ControlModifier);
        m_edit->paste();
        ASSERT_EQ(m_edit->toPlainText(), tooLong());
    }

    static QString tooLong() { return QString(limits::fieldText + 5, QLatin1Char('x')); }

    /// The text of the notice that is shown; empty without one.
    QString notice()
    {
        for (const FormNotice* notice : m_view->findChildren<FormNotice*>()) {
            if (notice->isVisible())
                return notice->text();
        }
        return {};
    }

    QPushButton* noticeButton(const QString& text)
    {
        for (auto* button : m_view->findChildren<QPushButton*>()) {
            if (button->text() == text && button->isVisible())
                return button;
        }
        return nullptr;
    }

    /// Whether the editor is still there with what was entered, and says so.
    void expectRefused()
    {
        ASSERT_NE(m_edit, nullptr);
        EXPECT_TRUE(m_edit->isVisible());
        EXPECT_EQ(m_edit->toPlainText(), tooLong());
        EXPECT_TRUE(notice().contains(QStringLiteral("100,005"))) << notice().toStdString();
        EXPECT_EQ(m_edit->accessibleDescription(), notice());
        EXPECT_EQ(field("notes").text, QStringLiteral("old"));
        const QColor ring = colorAt(m_edit->geometry().topLeft() - QPoint(1, 1));
        EXPECT_GT(ring.red(), ring.green() + 60) << ring.name().toStdString();
        EXPECT_GT(ring.red(), ring.blue() + 60) << ring.name().toStdString();
    }

    QPointer<QPlainTextEdit> m_edit;
};

TEST_F(FormRefusalTest, ATextThatIsTooLongStaysInItsEditorAndTheUserIsTold)
{
    pasteTooMuch();
    EXPECT_EQ(notice(), QString());
    QTest::keyClick(m_edit, Qt::Key_Return, Qt::ControlModifier);
    expectRefused();
    EXPECT_TRUE(m_edit->hasFocus());
}

TEST_F(FormRefusalTest, EscapeGoesBackToWhatTheDocumentHas)
{
    pasteTooMuch();
    QTest::keyClick(m_edit, Qt::Key_Return, Qt::ControlModifier);
    QTest::keyClick(m_edit, Qt::Key_Escape);
    EXPECT_TRUE(m_view->hasFocus());
    EXPECT_TRUE(!m_edit || !m_edit->isVisible());
    EXPECT_EQ(notice(), QString());
    click("notes");
    ASSERT_NE(editor<QPlainTextEdit>(), nullptr);
    EXPECT_EQ(editor<QPlainTextEdit>()->toPlainText(), QStringLiteral("old"));
}

TEST_F(FormRefusalTest, AChangedTextIsTaken)
{
    pasteTooMuch();
    QTest::keyClick(m_edit, Qt::Key_Return, Qt::ControlModifier);
    QTest::keyClick(m_edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(m_edit, QStringLiteral("short"));
    QTest::keyClick(m_edit, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(hasText("notes", QStringLiteral("short")));
    EXPECT_TRUE(m_view->hasFocus());
    EXPECT_EQ(notice(), QString());
}

TEST_F(FormRefusalTest, NoOtherFieldOpensBefore)
{
    pasteTooMuch();
    QTest::keyClick(m_edit, Qt::Key_Tab);
    expectRefused();
    EXPECT_TRUE(m_edit->hasFocus());
    click("name");
    expectRefused();
    EXPECT_TRUE(m_edit->hasFocus());
    // Beside all fields.
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, {3, 3});
    m_view->setFocus();
    expectRefused();
}

TEST_F(FormRefusalTest, ClosingTheNoticeKeepsTheText)
{
    pasteTooMuch();
    QTest::keyClick(m_edit, Qt::Key_Return, Qt::ControlModifier);
    QTest::mouseClick(m_view->findChild<FormNotice*>()->findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([this] { return notice().isEmpty(); }));
    ASSERT_NE(m_edit, nullptr);
    EXPECT_TRUE(m_edit->isVisible());
    EXPECT_EQ(m_edit->toPlainText(), tooLong());
}

TEST_F(FormRefusalTest, SavingAndPrintingGoOnAndTheTextStays)
{
    pasteTooMuch();
    bool isDone = false;
    m_view->finishEditing([&] { isDone = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return isDone; }));
    expectRefused();
}

TEST_F(FormRefusalTest, ALineIsNotCutInSilenceEither)
{
    click("name");
    auto* edit = editor<QLineEdit>();
    ASSERT_NE(edit, nullptr);
    QApplication::clipboard()->setText(tooLong());
    edit->paste();
    EXPECT_EQ(edit->text().size(), tooLong().size());
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_TRUE(edit->hasFocus());
    EXPECT_TRUE(notice().contains(QStringLiteral("100,005"))) << notice().toStdString();
}

TEST_F(FormRefusalTest, WhatTheDocumentRefusesComesBackInAnEditor)
{
    click("name");
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Jane"));
    const auto page = m_view->document()->page(0);
    const auto annotations = page->annotations();
    ASSERT_EQ(annotations.size(), 2U);
    page->removeAnnotation(annotations[1]);
    ASSERT_TRUE(page->annotationDisplayList());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([this] { return editor<QLineEdit>() != nullptr; }));
    auto* edit = editor<QLineEdit>();
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->text(), QStringLiteral("Jane"));
    EXPECT_FALSE(notice().isEmpty());
    EXPECT_EQ(edit->accessibleDescription(), notice());
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_TRUE(m_view->hasFocus());
    EXPECT_EQ(notice(), QString());
}

TEST_F(FormRefusalTest, HandsARefusedTextOutWhenItsDocumentIsLeft)
{
    pasteTooMuch();
    QTest::keyClick(m_edit, Qt::Key_Tab);
    expectRefused();
    QApplication::clipboard()->clear();
    m_view->setDocument(documentOf(colouredDocument(1)));
    EXPECT_TRUE(notice().contains(QStringLiteral("notes"))) << notice().toStdString();
    EXPECT_FALSE(notice().contains(QStringLiteral("100,005")));
    auto* copy = noticeButton(QStringLiteral("Copy Text"));
    ASSERT_NE(copy, nullptr);
    QTest::mouseClick(copy, Qt::LeftButton);
    EXPECT_EQ(QApplication::clipboard()->text(), tooLong());
    m_view->setDocument(documentOf(colouredDocument(1)));
    EXPECT_EQ(notice(), QString());
}

TEST_F(FormRefusalTest, SaysNothingOfARefusedTextThatWasGivenUp)
{
    pasteTooMuch();
    QTest::keyClick(m_edit, Qt::Key_Tab);
    expectRefused();
    QTest::keyClick(m_edit, Qt::Key_Escape);
    m_view->setDocument(documentOf(colouredDocument(1)));
    EXPECT_EQ(notice(), QString());
}

/// A form of several pages.
class FarEditorTest : public FormViewFixture
{
};

TEST_F(FarEditorTest, AnEditorStaysWithItsPage)
{
    m_file.add("/FT/Tx/T(name)/DA(/Helv 10 Tf 0 g)/Rect[50 100 250 120]");
    for (int page = 0; page < 12; ++page)
        m_file.endPage();
    showForm();
    click("name");
    QPointer<QLineEdit> edit = editor<QLineEdit>();
    ASSERT_NE(edit, nullptr);
    QTest::keyClicks(edit, QStringLiteral("Jane"));
    m_view->goToPage(10);
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_view->currentPageIndex() == 10; }));
    ASSERT_NE(edit, nullptr);
    EXPECT_FALSE(edit->geometry().intersects(m_view->viewport()->rect()));
    m_view->goToPage(0);
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_view->currentPageIndex() == 0; }));
    EXPECT_EQ(edit->geometry(), rectOf(field("name")).toAlignedRect());
    EXPECT_EQ(edit->text(), QStringLiteral("Jane"));
}

} // namespace
} // namespace pdf
