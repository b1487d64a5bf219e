// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormNotice.h"
#include "pdfview/FormViewFixture.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace pdf {
namespace {

using testing::ElementsAre;

using FormFillerTest = FormViewFixture;

TEST_F(FormFillerTest, AClickOpensATextFieldAndEnterHandsItsTextToTheDocument)
{
    m_file.add("/FT/Tx/T(name)/V(old)");
    showForm();
    QSignalSpy filled(m_view.get(), &PDFView::formFilled);
    click("name");
    auto* edit = editor<QLineEdit>();
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->text(), QStringLiteral("old"));
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(edit, QStringLiteral("new"));
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_TRUE(m_view->hasFocus());
    EXPECT_TRUE(hasText("name", QStringLiteral("new")));
    EXPECT_TRUE(!filled.isEmpty() || filled.wait());
}

TEST_F(FormFillerTest, TheEditorStandsOverTheFieldAndFollowsIt)
{
    m_file.add("/FT/Tx/T(name)/DA(/Helv 10 Tf 0 g)");
    showForm();
    click("name");
    auto* edit = editor<QLineEdit>();
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->geometry(), rectOf(field("name")).toAlignedRect());
    EXPECT_EQ(edit->font().pixelSize(), 10);
    m_view->setScaleFactor(2.0);
    EXPECT_EQ(edit->geometry(), rectOf(field("name")).toAlignedRect());
    EXPECT_EQ(edit->font().pixelSize(), 20);
    EXPECT_TRUE(edit->hasFocus());
    m_view->scrollBy({0, 40});
    EXPECT_EQ(edit->geometry(), rectOf(field("name")).toAlignedRect());
}

TEST_F(FormFillerTest, EscapeLeavesTheOldText)
{
    m_file.add("/FT/Tx/T(name)/V(old)");
    showForm();
    click("name");
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("new"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_TRUE(m_view->hasFocus());
    QSignalSpy finished(m_view.get(), &PDFView::pagesMoved);
    bool isDone = false;
    m_view->finishEditing([&] { isDone = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return isDone; }));
    EXPECT_EQ(field("name").text, QStringLiteral("old"));
    EXPECT_FALSE(m_view->document()->isModified());
}

TEST_F(FormFillerTest, AClickBesideTheFieldHandsItsTextToTheDocument)
{
    m_file.add("/FT/Tx/T(name)");
    showForm();
    click("name");
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("new"));
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, {50, 50});
    EXPECT_FALSE(isEditing());
    EXPECT_TRUE(hasText("name", QStringLiteral("new")));
}

TEST_F(FormFillerTest, AnUnchangedFieldChangesNothing)
{
    m_file.add("/FT/Tx/T(name)/V(same)");
    m_file.add("/FT/Ch/Ff 131072/T(choice)/Opt[(A)(B)]/V(B)/Rect[100 200 200 220]");
    showForm();
    m_view->setFocus();
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    bool isDone = false;
    m_view->finishEditing([&] { isDone = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return isDone; }));
    EXPECT_FALSE(m_view->document()->isModified());
}

TEST_F(FormFillerTest, ThePageShowsTheNewText)
{
    m_file.add("/FT/Tx/T(name)/DA(/Helv 20 Tf 0 g)/Rect[50 100 250 130]");
    showForm();
    const QRect rect = rectOf(field("name")).toAlignedRect();
    const auto ink = [&] { return darkPixels(m_view->viewport()->grab(rect).toImage()); };
    EXPECT_EQ(ink(), 0);
    QSignalSpy refreshed(m_view.get(), &PDFView::annotationsRefreshed);
    click("name");
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Larkspur"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_GT(ink(), 100) << "what was entered stays to be seen until the page is drawn";
    ASSERT_TRUE(refreshed.wait());
    EXPECT_GT(ink(), 100);
}

TEST_F(FormFillerTest, TabWalksTheFieldsInOrderAndOverThePages)
{
    m_file.add("/FT/Tx/T(first)");
    m_file.add("/FT/Tx/T(read only)/Ff 1");
    m_file.add("/FT/Btn/T(second)/Rect[100 200 120 220]");
    m_file.add("/FT/Btn/Ff 65536/T(push)");
    for (int i = 0; i < 6; ++i)
        m_file.endPage();
    m_file.add("/FT/Tx/T(last)");
    showForm();
    m_view->setFocus();
    QStringList names;
    for (int i = 0; i < 3; ++i) {
        const QWidget* before = QApplication::focusWidget();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_TRUE(QTest::qWaitFor([&] {
            return QApplication::focusWidget() != before && QApplication::focusWidget() != m_view.get();
        }));
        names.append(QApplication::focusWidget()->accessibleName());
    }
    EXPECT_THAT(
        names, ElementsAre(QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("last")));
    EXPECT_EQ(m_view->currentPageIndex(), 6);
    EXPECT_TRUE(m_view->viewport()->rect().contains(QApplication::focusWidget()->geometry()));

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return QApplication::focusWidget()->accessibleName() == QStringLiteral("second"); }));
    EXPECT_EQ(m_view->currentPageIndex(), 0);
}

TEST_F(FormFillerTest, TabLeavesTheViewAfterTheLastField)
{
    m_file.add("/FT/Tx/T(only)");
    showForm();
    auto* window = new QWidget;
    m_view->setParent(window);
    QLineEdit next(window);
    window->resize(400, 600);
    m_view->show();
    next.move(0, 560);
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    m_view->setFocus();
    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    ASSERT_TRUE(isEditing());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(QTest::qWaitFor([&] { return next.hasFocus(); }));
    m_view.reset();
    next.setParent(nullptr);
    delete window;
}

TEST_F(FormFillerTest, AnEditorStaysWhileTheMenusHaveTheKeyboard)
{
    m_file.add("/FT/Tx/T(name)");
    showForm();
    click("name");
    QPointer<QLineEdit> edit = editor<QLineEdit>();
    ASSERT_NE(edit, nullptr);
    QTest::keyClicks(edit, QStringLiteral("Jane"));
    m_view->setFocus(Qt::MenuBarFocusReason);
    ASSERT_FALSE(edit->hasFocus());
    EXPECT_TRUE(edit->isVisible());
    edit->setFocus(Qt::MenuBarFocusReason);
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_TRUE(m_view->hasFocus());
    EXPECT_EQ(field("name").text, QString());
}

TEST_F(FormFillerTest, TheViewHasTheKeyboardWhenAnotherDocumentIsShown)
{
    m_file.add("/FT/Tx/T(name)");
    showForm();
    QWidget window;
    // It comes before the view, so it is what the window turns to when nothing has the keyboard.
    QPushButton button(&window);
    m_view->setParent(&window);
    window.resize(400, 600);
    m_view->show();
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    click("name");
    ASSERT_NE(editor<QLineEdit>(), nullptr);
    QWidget dialog;
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    m_view->setDocument(documentOf(colouredDocument(1)));
    dialog.hide();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_TRUE(m_view->hasFocus());
    m_view.reset();
}

TEST_F(FormFillerTest, ADocumentWithoutAFormLeavesTheTabKeyAlone)
{
    show(colouredDocument(1));
    m_view->setFocus();
    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    EXPECT_TRUE(m_view->findChildren<QLineEdit*>().isEmpty());
}

TEST_F(FormFillerTest, ACheckBoxIsToggledByClickAndBySpace)
{
    m_file.add("/FT/Btn/T(box)/Rect[100 100 120 120]");
    showForm();
    click("box");
    ASSERT_TRUE(QTest::qWaitFor([&] { return field("box").isOn; }));
    ASSERT_NE(editor<QCheckBox>(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !field("box").isOn; }));
    click("box");
    EXPECT_TRUE(QTest::qWaitFor([&] { return field("box").isOn; }));
}

TEST_F(FormFillerTest, APressThatIsLetGoElsewhereTogglesNothing)
{
    m_file.add("/FT/Btn/T(box)/Rect[100 100 120 120]");
    showForm();
    QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, placeOf(field("box")));
    QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, {30, 30});
    bool isDone = false;
    m_view->finishEditing([&] { isDone = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return isDone; }));
    EXPECT_FALSE(field("box").isOn);
}

TEST_F(FormFillerTest, RadioButtonsAreChosenByClickAndArrow)
{
    m_file.addWithWidgets(
        "/FT/Btn/Ff 49152/T(radio)/V/A",
        {"/AS/A/AP<</D<</A null>>>>/Rect[50 100 70 120]", "/AS/Off/AP<</D<</B null>>>>/Rect[100 100 120 120]",
         "/AS/Off/AP<</D<</C null>>>>/Rect[150 100 170 120]"});
    showForm();
    const auto chosen = [&] {
        int index = -1;
        const auto all = fields(0);
        for (std::size_t i = 0; i < all.size(); ++i)
            index = all[i].isOn ? static_cast<int>(i) : index;
        return index;
    };
    click(fields(0)[1]);
    ASSERT_TRUE(QTest::qWaitFor([&] { return chosen() == 1; }));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_TRUE(QTest::qWaitFor([&] { return chosen() == 2; }));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_TRUE(QTest::qWaitFor([&] { return chosen() == 0; })) << "after the last comes the first";
    click(fields(0)[0]);
    EXPECT_EQ(chosen(), 0) << "one stays chosen";
}

TEST_F(FormFillerTest, AGroupOfRadioButtonsIsOneStopOfTheTabKeyOnTheChosenOne)
{
    m_file.add("/FT/Tx/T(before)/Rect[50 300 250 320]");
    m_file.addWithWidgets(
        "/FT/Btn/Ff 49152/T(radio)/TU(radio)/V/B",
        {"/AS/Off/AP<</D<</A null>>>>/Rect[50 100 70 120]", "/AS/B/AP<</D<</B null>>>>/Rect[100 100 120 120]",
         "/AS/Off/AP<</D<</C null>>>>/Rect[150 100 170 120]"});
    m_file.addWithWidgets(
        "/FT/Btn/Ff 49152/T(unchosen)/TU(unchosen)", {"/AS/Off/AP<</D<</A null>>>>/Rect[50 150 70 170]",
                                                      "/AS/Off/AP<</D<</B null>>>>/Rect[100 150 120 170]"});
    m_file.add("/FT/Tx/T(after)/Rect[50 200 250 220]");
    showForm();
    m_view->setFocus();
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        const QWidget* before = QApplication::focusWidget();
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        return QTest::qWaitFor([&] {
            return QApplication::focusWidget() != before && QApplication::focusWidget() != m_view.get();
        });
    };
    const auto stop = [&] {
        const QRect place = QApplication::focusWidget()->geometry();
        return QApplication::focusWidget()->accessibleName() + u' ' +
               QString::number(qRound((place.left() - m_view->pageRect(0).left()) / m_view->scaleFactor()));
    };
    QStringList stops;
    for (int i = 0; i < 4; ++i) {
        ASSERT_TRUE(press(Qt::Key_Tab));
        stops.append(stop());
    }
    EXPECT_THAT(stops.mid(1, 2), ElementsAre(QStringLiteral("radio 100"), QStringLiteral("unchosen 50")))
        << "the second button is on; of the other group none is";
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), QStringLiteral("after"));
    ASSERT_TRUE(press(Qt::Key_Backtab, Qt::ShiftModifier));
    EXPECT_EQ(stop(), QStringLiteral("unchosen 50"));
    ASSERT_TRUE(press(Qt::Key_Backtab, Qt::ShiftModifier));
    EXPECT_EQ(stop(), QStringLiteral("radio 100"));

    ASSERT_TRUE(press(Qt::Key_Right));
    EXPECT_EQ(stop(), QStringLiteral("radio 150"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return fields(0)[3].isOn; })) << "the arrow has chosen it";
    ASSERT_TRUE(press(Qt::Key_Tab));
    EXPECT_EQ(stop(), QStringLiteral("unchosen 50")) << "the rest of the group is passed by";
    ASSERT_TRUE(press(Qt::Key_Backtab, Qt::ShiftModifier));
    EXPECT_EQ(stop(), QStringLiteral("radio 150")) << "the stop goes with the choice";
}

TEST_F(FormFillerTest, AComboBoxOffersItsOptions)
{
    m_file.add("/FT/Ch/Ff 131072/T(size)/Opt[[(s)(Small)][(l)(Large)]]/V(s)");
    showForm();
    click("size");
    auto* box = m_view->findChild<QComboBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return box->view()->isVisible(); }));
    EXPECT_EQ(box->currentText(), QStringLiteral("Small"));
    QTest::keyClick(box->view(), Qt::Key_Down);
    QTest::keyClick(box->view(), Qt::Key_Return);
    EXPECT_TRUE(hasText("size", QStringLiteral("Large")));
}

TEST_F(FormFillerTest, AnEditableComboBoxTakesAnotherText)
{
    m_file.add("/FT/Ch/Ff 393216/T(colour)/Opt[(Red)(Blue)]");
    showForm();
    m_view->setFocus();
    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    auto* box = m_view->findChild<QComboBox*>();
    ASSERT_NE(box, nullptr);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Mauve"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(hasText("colour", QStringLiteral("Mauve")));
    EXPECT_TRUE(m_view->hasFocus());
}

TEST_F(FormFillerTest, AListBoxTakesOneOptionAfterAnotherWithControl)
{
    m_file.add("/FT/Ch/Ff 2097152/T(list)/Opt[(A)(B)(C)]/Rect[100 100 200 200]/DA(/Helv 12 Tf 0 g)");
    showForm();
    click("list");
    auto* list = editor<QListWidget>();
    ASSERT_NE(list, nullptr);
    const auto clickRow = [&](int row, Qt::KeyboardModifiers modifiers) {
        QTest::mouseClick(
            list->viewport(), Qt::LeftButton, modifiers, list->visualItemRect(list->item(row)).center());
    };
    clickRow(0, {});
    clickRow(2, Qt::ControlModifier);
    QTest::keyClick(list, Qt::Key_Tab);
    EXPECT_TRUE(QTest::qWaitFor([&] { return field("list").selection == std::vector<int>({0, 2}); }));
}

TEST_F(FormFillerTest, ReturnIsPartOfATextOfSeveralLines)
{
    m_file.add("/FT/Tx/Ff 4096/T(lines)/Rect[100 100 200 200]");
    showForm();
    click("lines");
    ASSERT_NE(editor<QPlainTextEdit>(), nullptr);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("one"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("two"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(m_view->hasFocus());
    EXPECT_TRUE(hasText("lines", QStringLiteral("one\ntwo")));
}

TEST_F(FormFillerTest, NoMoreThanTheMaximumCanBeTyped)
{
    m_file.add("/FT/Tx/MaxLen 3/T(line)");
    m_file.add("/FT/Tx/MaxLen 3/Ff 4096/T(lines)/Rect[100 200 200 300]");
    m_file.add("/FT/Tx/MaxLen 3/Ff 16777216/T(comb)/Rect[100 310 200 330]");
    showForm();
    for (const char* name : {"line", "lines", "comb"}) {
        click(name);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("12345"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return, Qt::ControlModifier);
        EXPECT_TRUE(hasText(name, QStringLiteral("123"))) << name;
    }
}

TEST_F(FormFillerTest, ACombIsEditedInItsCells)
{
    m_file.add("/FT/Tx/MaxLen 4/Ff 16777216/T(comb)/V(AB)/Rect[100 100 200 120]");
    showForm();
    const QPoint firstBoundary = rectOf(field("comb")).topLeft().toPoint() + QPoint(25, 10);
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, firstBoundary);
    auto* edit = editor<QLineEdit>();
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->cursorPosition(), 1);
    QTest::keyClicks(edit, QStringLiteral("x"));
    QTest::mouseClick(edit, Qt::LeftButton, {}, {80, 10});
    EXPECT_EQ(edit->cursorPosition(), 3) << "beyond the text is its end";
    QTest::keyClicks(edit, QStringLiteral("y"));
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_TRUE(hasText("comb", QStringLiteral("AxBy")));
}

TEST_F(FormFillerTest, APasswordIsNotShown)
{
    m_file.add("/FT/Tx/Ff 8192/T(secret)");
    showForm();
    click("secret");
    auto* edit = editor<QLineEdit>();
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->echoMode(), QLineEdit::Password);
}

TEST_F(FormFillerTest, AnInputMethodComposesIntoTheField)
{
    m_file.add("/FT/Tx/T(name)");
    m_file.add("/FT/Tx/MaxLen 4/Ff 16777216/T(comb)/Rect[100 200 200 220]");
    showForm();
    for (const char* name : {"name", "comb"}) {
        click(name);
        QWidget* edit = QApplication::focusWidget();
        EXPECT_TRUE(edit->inputMethodQuery(Qt::ImEnabled).toBool());
        QInputMethodEvent composing(QStringLiteral("zhong"), {});
        QApplication::sendEvent(edit, &composing);
        QInputMethodEvent composed;
        composed.setCommitString(QStringLiteral("中"));
        QApplication::sendEvent(edit, &composed);
        QTest::keyClick(edit, Qt::Key_Return);
        EXPECT_TRUE(hasText(name, QStringLiteral("中"))) << name;
    }
}

TEST_F(FormFillerTest, WhatCannotBeFilledIsLeftAlone)
{
    m_file.add("/FT/Tx/T(open)/Rect[100 300 200 320]");
    m_file.add("/FT/Tx/Ff 1/T(read only)/V(fixed)");
    m_file.add("/FT/Btn/Ff 65536/T(push)/Rect[100 200 200 220]");
    m_file.add("/FT/Sig/T(signature)/Rect[100 150 200 170]");
    showForm();
    for (const char* name : {"read only", "push", "signature"}) {
        click(name);
        EXPECT_FALSE(isEditing()) << name;
        QTest::mouseMove(m_view->viewport(), placeOf(field(name)));
        EXPECT_EQ(m_view->viewport()->cursor().shape(), Qt::ArrowCursor) << name;
    }
}

TEST_F(FormFillerTest, TheEditorIsCalledWhatTheFieldIsFor)
{
    m_file.add("/FT/Tx/T(f1)/TU(Your name)");
    m_file.add("/FT/Tx/T(f2)/Rect[100 200 200 220]");
    showForm();
    click("f1");
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), QStringLiteral("Your name"));
    click("f2");
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), QStringLiteral("f2"));
}

TEST_F(FormFillerTest, AFieldReadFromTheSideIsEditedUpright)
{
    m_file.setPageEntries("/MediaBox[0 0 300 400]/Rotate 90");
    m_file.add("/FT/Tx/T(sideways)/Rect[100 100 200 120]");
    m_file.add("/FT/Tx/T(upright)/MK<</R 90>>/Rect[200 200 220 300]");
    showForm();
    click("sideways");
    EXPECT_EQ(QApplication::focusWidget()->size(), QSize(100, 20));
    click("upright");
    EXPECT_EQ(QApplication::focusWidget()->size(), QSize(100, 20));
}

TEST_F(FormFillerTest, FieldsToBeFilledInAreTinted)
{
    m_file.add("/FT/Tx/T(open)");
    m_file.add("/FT/Tx/Ff 1/T(closed)/Rect[100 200 200 220]");
    showForm();
    EXPECT_NE(colorAt(rectOf(field("open")).center()), QColor(Qt::white));
    EXPECT_EQ(colorAt(rectOf(field("closed")).center()), QColor(Qt::white));
}

TEST_F(FormFillerTest, AnotherDocumentEndsTheEditing)
{
    m_file.add("/FT/Tx/T(name)");
    showForm();
    click("name");
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("lost"));
    m_view->setDocument(documentOf(colouredDocument(2)));
    EXPECT_TRUE(becomes(m_view->pageRect(0).center(), colorOfPage(0)));
    EXPECT_EQ(editor<QLineEdit>(), nullptr);
}

TEST_F(FormFillerTest, AViewCanBeClosedWhileAFieldIsEdited)
{
    m_file.add("/FT/Tx/T(name)");
    showForm();
    const auto document = m_view->document();
    click("name");
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("x"));
    m_view.reset();
    EXPECT_EQ(document->page(0)->formFields()->front().text, QString());
}

TEST_F(FormFillerTest, AFormThatCannotBeFilledInSaysSo)
{
    m_file.setFormEntries("/XFA(form)");
    show(m_file.bytes());
    const auto notice = [this] { return m_view->findChild<FormNotice*>(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return notice() && notice()->isVisible(); }));
    EXPECT_TRUE(m_view->viewport()->rect().contains(notice()->geometry()));
    m_view->setDocument(documentOf(colouredDocument(1)));
    EXPECT_EQ(notice(), nullptr);
}

TEST_F(FormFillerTest, TheNoticeOfAFormThatCannotBeFilledInCanBeClosed)
{
    m_file.setFormEntries("/XFA(form)");
    show(m_file.bytes());
    const auto notice = [this] { return m_view->findChild<FormNotice*>(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return notice() && notice()->isVisible(); }));
    QTest::mouseClick(notice()->findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !notice(); }));
    m_view->resize(m_view->size() + QSize(50, 50));
}

TEST_F(FormFillerTest, FindsTheFieldsOfAPageThatWasTurned)
{
    m_file.add("/FT/Tx/T(a)/Rect[10 350 60 370]");
    showForm({500, 500});
    ASSERT_TRUE(m_view->document()->page(0)->setRotation(90));
    m_view->refreshPage(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->pageRect(0).size() == QSizeF(400, 300); }));
    ASSERT_TRUE(fieldsAnswer());
    const QPointF inPage(35, 360);
    const QPointF inView = m_view->pageToView(0)->map(inPage);
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, Qt::NoModifier, inView.toPoint());
    EXPECT_TRUE(m_view->viewport()->findChild<QLineEdit*>());
}

} // namespace
} // namespace pdf
