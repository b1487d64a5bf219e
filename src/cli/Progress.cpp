// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Progress.h"

#include <QCoreApplication>

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

namespace quillo::cli {
namespace {

constexpr std::chrono::milliseconds delay(200);

constexpr int usualColumns = 80;
constexpr int narrowestBar = 10;
constexpr int widestBar = 40;

std::atomic<Progress*> current = nullptr;

int columnsOfStandardError()
{
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usualColumns;
}

/// Whether somebody else has the terminal for now.
bool isInBackground()
{
    const pid_t foreground = tcgetpgrp(STDERR_FILENO);
    return foreground > 0 && foreground != getpgrp();
}

/// Past the stream, which has no part in a line that will not stay.
void writeToStandardError(QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t count = ::write(STDERR_FILENO, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (count <= 0)
            return;
        bytes = bytes.sliced(count);
    }
}

} // namespace

QString progressLine(std::int64_t pagesRead, std::int64_t pageCount, int columns)
{
    // A terminal that is filled to its last column may go on to the next line.
    const int room = std::max(columns - 1, 0);
    QString line = QCoreApplication::translate("quillo::cli", "page %1 of %2").arg(pagesRead).arg(pageCount);
    const auto bar = std::min<qsizetype>(room - line.size() - 3, widestBar);
    if (bar >= narrowestBar && pageCount > 0) {
        const auto done = static_cast<qsizetype>(bar * std::min(pagesRead, pageCount) / pageCount);
        line += QStringLiteral(" [") + QString(done, u'#') + QString(bar - done, u'.') + u']';
    }
    return line.left(room);
}

Progress::Progress()
    : m_isTerminal(isatty(STDERR_FILENO) == 1)
{
    current = this;
}

Progress::~Progress()
{
    current = nullptr;
    end();
}

void Progress::begin(std::int64_t pageCount)
{
    const std::lock_guard lock(m_mutex);
    m_pagesRead = 0;
    m_pageCount = pageCount;
    m_start = Clock::now();
}

void Progress::end()
{
    constexpr std::string_view spaces = "                    ";
    const std::lock_guard lock(m_mutex);
    m_pageCount = 0;
    if (m_drawnColumns > 0) {
        writeToStandardError("\r");
        for (int left = m_drawnColumns; left > 0; left -= static_cast<int>(spaces.size()))
            writeToStandardError({spaces.data(), std::min<qsizetype>(left, spaces.size())});
        writeToStandardError("\r");
    }
    m_drawnColumns = 0;
}

void Progress::draw()
{
    const int columns = columnsOfStandardError();
    const auto pageCount = pageCountToDraw();
    if (pageCount == 0)
        return;
    const QByteArray line = '\r' + progressLine(m_pagesRead, pageCount, columns).toUtf8();
    const std::lock_guard lock(m_mutex);
    if (m_pageCount != pageCount)
        return;
    writeToStandardError(line);
    // What the user types is echoed behind the line, "^C" for one, and goes with it.
    m_drawnColumns = std::max(columns - 1, 0);
}

std::int64_t Progress::pageCountToDraw()
{
    const std::lock_guard lock(m_mutex);
    const bool isTime = m_isTerminal && !isInBackground() && Clock::now() - m_start >= delay;
    return isTime ? m_pageCount : 0;
}

void Progress::eraseCurrent()
{
    if (Progress* progress = current)
        progress->end();
}

} // namespace quillo::cli
