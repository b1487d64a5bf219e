// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>

namespace quillo::cli {

/// The line that tells a person how far the reading of a document is: the number of pages that are done and a
/// bar where there is room for one. ASCII, and narrower than the terminal.
QString progressLine(std::int64_t pagesRead, std::int64_t pageCount, int columns);

/// Shows that line on standard error where that is a terminal, a moment after the reading began; what is done
/// by then shows nothing. Nothing of it stays on the terminal. There is one at a time. Safe from any thread.
class Progress
{
public:
    Progress();
    /// Erases the line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Whether there is a terminal to show it on.
    bool isShown() const { return m_isTerminal; }

    void begin(std::int64_t pageCount);
    void notePage() { ++m_pagesRead; }
    /// Erases the line.
    void end();

    /// Draws the line as it is now, if it is time to.
    void draw();

    /// Erases the line of the one that there is, for who ends the program from another place.
    static void eraseCurrent();

private:
    using Clock = std::chrono::steady_clock;

    /// 0 when it is not time to draw.
    std::int64_t pageCountToDraw();

    const bool m_isTerminal;
    std::atomic<std::int64_t> m_pagesRead = 0;

    /// No memory is asked for while it is held: the thread that finds none left erases the line.
    std::mutex m_mutex;
    /// 0 while nothing is read.
    std::int64_t m_pageCount = 0;
    Clock::time_point m_start;
    /// Columns of the line on the terminal, 0 when there is none.
    int m_drawnColumns = 0;
};

} // namespace quillo::cli
