// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/DocumentVisit.h"

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdfview/PDFView.h"
#include "pdfview/RenderThreads.h"
#include "support/Widgets.h"
#include "viewer/PasswordDialog.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QRegularExpression>
#include <QTest>

#include <atomic>
#include <ctime>

namespace quillo {
namespace {

// Processor time of the main thread, while the machine may be busy with other things.
constexpr double longestSeconds = 10.0;

// What does not end is stopped by the patience.
constexpr int patience = 120'000;

double mainThreadSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

QString firstWord(pdf::PDFDocument& document)
{
    static const QRegularExpression word(QStringLiteral("\\p{L}[\\p{L}\\p{M}]{3,}"));
    const auto page = document.page(0);
    return word.match(page ? page->string().value_or(QString()) : QString()).captured();
}

void typeInto(QWidget* editor)
{
    if (qobject_cast<QAbstractButton*>(editor))
        QTest::keyClick(editor, Qt::Key_Space);
    else if (qobject_cast<QComboBox*>(editor))
        QTest::keyClick(editor, Qt::Key_Down);
    else
        QTest::keyClicks(editor, QStringLiteral("7"));
}

} // namespace

DocumentVisit::DocumentVisit()
    : m_viewer(&m_state, m_analytics.service())
    , m_view(m_viewer.findChild<pdf::PDFView*>())
{
    m_viewer.resize(900, 800);
    m_viewer.show();
    activate();
    QObject::connect(&m_viewer, &PDFViewer::documentResolved, &m_viewer, [this] { m_isResolved = true; });
    QObject::connect(&m_refusal, &QTimer::timeout, &m_viewer, [] {
        if (isDialogOpen<PasswordDialog>())
            waitForDialog<PasswordDialog>()->reject();
    });
    m_refusal.start(10);
}

const std::shared_ptr<pdf::PDFDocument>& DocumentVisit::document() const
{
    return m_view->document();
}

void DocumentVisit::step(const char* name, const std::function<void()>& work)
{
    SCOPED_TRACE(name);
    const double before = mainThreadSeconds();
    work();
    EXPECT_LE(mainThreadSeconds() - before, longestSeconds) << "the window is busy";
}

void DocumentVisit::waitFor(const std::function<bool()>& isDone)
{
    EXPECT_TRUE(QTest::qWaitFor(isDone, patience)) << "it does not end";
}

void DocumentVisit::activate()
{
    m_viewer.activateWindow();
    waitFor([this] { return m_viewer.isActiveWindow(); });
}

void DocumentVisit::finishEditing()
{
    bool isFinished = false;
    m_view->finishEditing([&] { isFinished = true; });
    waitFor([&] { return isFinished; });
}

void DocumentVisit::waitUntilDrawn()
{
    using namespace std::chrono_literals;
    QCoreApplication::processEvents();
    // What was drawn may have to be followed by more, which is asked for when it is taken.
    waitFor([] {
        const bool isIdle = pdf::RenderThreads::shared().waitUntilIdle(0ms);
        QCoreApplication::processEvents();
        return isIdle && pdf::RenderThreads::shared().waitUntilIdle(0ms);
    });
}

bool DocumentVisit::open(const QString& path)
{
    step("opening", [&] {
        m_isResolved = false;
        m_state.setUrl(QUrl::fromLocalFile(path));
        waitFor([this] { return m_isResolved; });
    });
    return document() && document()->documentURL().toLocalFile() == path;
}

void DocumentVisit::scrollThrough(double scale, int screens)
{
    step("scrolling", [&] {
        m_view->setScaleFactor(scale);
        m_view->goToPage(0);
        waitUntilDrawn();
        for (int i = 0; i < screens; ++i) {
            m_view->scrollBy({0.0, m_view->viewport()->height() * 0.9});
            QCoreApplication::processEvents();
        }
        m_view->goToEnd();
        waitUntilDrawn();
        m_view->grab();
    });
}

int DocumentVisit::countMatches(const QString& word)
{
    auto count = std::make_shared<std::atomic<int>>(0);
    auto isDone = std::make_shared<std::atomic<bool>>(false);
    document()->beginFindString(word, {}, {}, [count, isDone](const auto& matches, bool isLast) {
        *count += static_cast<int>(matches.size());
        *isDone = isLast;
    });
    waitFor([&] { return isDone->load(); });
    return *count;
}

void DocumentVisit::search()
{
    step("searching", [&] {
        const QString word = firstWord(*document());
        if (!word.isEmpty()) {
            EXPECT_GE(countMatches(word), 1) << word.toStdString();
        }
        EXPECT_EQ(countMatches(QStringLiteral("no such word \u2603 anywhere")), 0);
    });
}

int DocumentVisit::typeIntoFields(int most)
{
    int count = 0;
    step("typing", [&] {
        // Where nothing manages the windows, none is active once the dialog for a password has closed.
        activate();
        m_view->goToPage(0);
        m_view->setFocus();
        while (count < most) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            // The field that comes next may have to be found first, and there may be none: then a link has
            // the keyboard, or whatever comes after the view.
            finishEditing();
            QWidget* editor = QApplication::focusWidget();
            if (!editor || !m_view->isAncestorOf(editor))
                break;
            typeInto(editor);
            ++count;
        }
    });
    return count;
}

pdf::Result<std::monostate> DocumentVisit::save(const QString& path)
{
    pdf::Result<std::monostate> result{std::monostate()};
    step("saving", [&] {
        finishEditing();
        result = document()->write(path);
    });
    return result;
}

} // namespace quillo
