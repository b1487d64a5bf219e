// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormFile.h"
#include "pdfview/JobQueue.h"
#include "pdfview/ViewSupport.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QDeadlineTimer>
#include <QTest>

#include <array>
#include <atomic>
#include <cstdio>
#include <random>

namespace pdf {
namespace {

constexpr int defaultSeconds = 4;
constexpr int textPages = 4;
constexpr int pageCount = 12;

std::chrono::seconds duration()
{
    const int asked = qEnvironmentVariableIntValue("QUILLO_TEST_SECONDS");
    return std::chrono::seconds(asked > 0 ? asked : defaultSeconds);
}

/// Does whatever a person may do with a view, in any order and without waiting for anything, while pages are
/// drawn and read, searched and saved on other threads.
class RandomUseTest : public PDFViewFixture
{
protected:
    static QByteArray manyPages()
    {
        FormFile file;
        for (int page = 0; page < textPages; ++page)
            file.writer().addPage(showText(72, 700, "Here is some text to be selected and searched."));
        for (int page = textPages; page < pageCount; ++page) {
            if (page > textPages)
                file.endPage();
            file.setPageEntries(
                page % 3 == 0 ? "/MediaBox[0 0 400 300]/Rotate 90" : "/MediaBox[0 0 300 400]");
            const QByteArray number = QByteArray::number(page);
            file.add("/FT/Tx/T(text" + number + ")/DA(/Helv 12 Tf 0 g)/Rect[20 240 200 260]");
            file.add("/FT/Tx/Ff 4096/T(lines" + number + ")/DA(/Helv 0 Tf 0 g)/Rect[20 150 200 220]");
            file.add("/FT/Ch/Ff 131072/T(choice" + number + ")/Opt[(One)(Two)]/Rect[20 120 200 140]");
        }
        return file.bytes();
    }

    void reopen()
    {
        m_view->setDocument(opened(m_path));
        m_document = m_view->document();
    }

    int number(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }
    QPoint place() { return {number(m_view->viewport()->width()), number(m_view->viewport()->height())}; }

    void scroll()
    {
        static constexpr Qt::Key keys[] = {Qt::Key_PageDown, Qt::Key_PageUp, Qt::Key_Home, Qt::Key_End,
                                           Qt::Key_Down,     Qt::Key_Space,  Qt::Key_Right};
        if (number(2) == 0)
            QTest::keyClick(m_view.get(), keys[number(std::size(keys))]);
        else
            m_view->scrollSmoothlyBy(QPointF(number(100) - 50, number(2000) - 1000));
    }

    void zoom()
    {
        if (number(4) == 0)
            m_view->setAutoScales(true);
        else
            m_view->zoom(number(2) == 0 ? 1.3 : 0.7, place());
    }

    void turn()
    {
        const int page = number(pageCount);
        EXPECT_TRUE(m_document->page(page)->setRotation(90 * number(4)));
        m_view->refreshPage(page);
    }

    void select()
    {
        static constexpr Qt::Key keys[] = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up,
                                           Qt::Key_Down, Qt::Key_Home,  Qt::Key_End};
        switch (number(6)) {
        case 0:
            return m_view->selectAll();
        case 1:
            return m_view->copySelection();
        case 2:
            return QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, place());
        case 3:
        case 4:
            return QTest::keyClick(
                m_view.get(), keys[number(std::size(keys))],
                number(2) == 0 ? Qt::ShiftModifier : Qt::ShiftModifier | Qt::ControlModifier);
        default:
            QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, place());
            QTest::mouseMove(m_view->viewport(), place());
            QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, place());
        }
    }

    void showMatch()
    {
        const int page = number(textPages);
        const int start = number(40);
        m_view->addHighlightedMatches({{number(textPages), start, 4}, {page, start, 4}});
        m_view->setCurrentSelection(m_document->selection({page, start}, {page, start + 4}), true);
        m_view->scrollSelectionToVisible();
        if (number(2) == 0)
            m_view->goToPage(page);
    }

    void readAloud()
    {
        auto* text = QAccessible::queryAccessibleInterface(m_view.get())->textInterface();
        const int offset = number(text->characterCount() + 1);
        EXPECT_LE(text->offsetAtPoint(text->characterRect(offset).center()), text->characterCount());
        text->setCursorPosition(offset);
    }

    void fill()
    {
        const int page = number(pageCount);
        m_view->goToPage(page);
        const auto toView = m_view->pageToView(page);
        if (!toView)
            return;
        const QPointF field(100, number(2) == 0 ? 250 : 180);
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, toView->map(field).toPoint());
        if (QWidget* editor = QApplication::focusWidget()) {
            QTest::keyClicks(editor, QStringLiteral("typed %1").arg(number(1000)));
            QTest::keyClick(editor, Qt::Key_Tab);
        }
    }

    void search()
    {
        m_search.cancel();
        m_search = Cancellation();
        m_document->beginFindString(
            QStringLiteral("e"), FindOption::caseInsensitive, m_search,
            [this](const std::vector<TextMatch>& matches, bool) { m_matches += matches.size(); });
    }

    void save()
    {
        m_view->finishEditing([this, document = m_document] {
            const QString target = m_folder.path(QStringLiteral("%1.pdf").arg(++m_saves));
            ++m_underWay;
            m_savers.at(static_cast<std::size_t>(m_saves) % m_savers.size())
                .add(
                    [document, target] { return bool(document->write(target, Overwrite::always)); },
                    [this](bool isSaved) {
                        m_failures += isSaved ? 0 : 1;
                        --m_underWay;
                    });
        });
    }

    void doAnything()
    {
        switch (number(24)) {
        case 0:
            return save();
        case 1:
            return m_view->resize(200 + number(600), 200 + number(600));
        case 2:
            return number(10) == 0 ? reopen() : search();
        case 3:
            return turn();
        case 4:
        case 5:
        case 6:
            return select();
        case 7:
        case 8:
        case 9:
            return fill();
        case 10:
        case 11:
        case 12:
            return zoom();
        case 13:
            return readAloud();
        case 14:
        case 15:
            return showMatch();
        default:
            return scroll();
        }
    }

    std::vector<QString> values(PDFDocument& document)
    {
        std::vector<QString> result;
        for (int page = 0; page < document.pageCount(); ++page) {
            result.push_back(QString::number(document.page(page)->rotation()));
            const auto fields = document.page(page)->formFields();
            EXPECT_TRUE(fields);
            if (!fields)
                continue;
            for (const PDFFormField& field : *fields)
                result.push_back(field.text);
        }
        return result;
    }

    std::mt19937 m_random{1};
    QString m_path;
    std::shared_ptr<PDFDocument> m_document;
    std::array<JobQueue, 2> m_savers;
    int m_underWay = 0;
    Cancellation m_search;
    int m_saves = 0;
    int m_failures = 0;
    std::atomic<std::size_t> m_matches = 0;
};

TEST_F(RandomUseTest, LosesNothingWhateverIsDoneInWhateverOrder)
{
    m_path = m_folder.write(QStringLiteral("form.pdf"), manyPages());
    show(opened(m_path), {500, 600});
    m_document = m_view->document();
    m_view->activateWindow();

    int actions = 0;
    for (const QDeadlineTimer deadline(duration()); !deadline.hasExpired(); ++actions) {
        doAnything();
        QTest::qWait(number(4));
    }
    bool isFinished = false;
    m_view->finishEditing([&isFinished] { isFinished = true; });
    ASSERT_TRUE(QTest::qWaitFor([&isFinished] { return isFinished; }));
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_underWay == 0; }, 60'000));
    std::printf(
        "%d actions, %d saves, %zu matches found\n", actions, m_saves, static_cast<std::size_t>(m_matches));
    EXPECT_EQ(m_failures, 0);

    const QString target = m_folder.path(QStringLiteral("at the end.pdf"));
    ASSERT_TRUE(m_document->write(target));
    const auto saved = PDFDocument::open(target);
    ASSERT_TRUE(saved);
    EXPECT_EQ(values(**saved), values(*m_document));
    EXPECT_EQ((*saved)->pageCount(), pageCount);
}

} // namespace
} // namespace pdf
