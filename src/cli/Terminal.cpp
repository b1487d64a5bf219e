// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Terminal.h"

#include <QtGlobal>

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>

namespace quillo::cli {
namespace {

// Nothing can be laid out in less, and nobody reads lines that are longer.
constexpr int minimumWidth = 30;
constexpr int maximumWidth = 120;

int widthOfStandardOutput(int otherwise)
{
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    bool isNumber = false;
    const int columns = qEnvironmentVariableIntValue("COLUMNS", &isNumber);
    return isNumber && columns > 0 ? columns : otherwise;
}

QLatin1String sequence(Style style)
{
    switch (style) {
    case Style::bold:
        return QLatin1String("\x1b[1m");
    case Style::dim:
        return QLatin1String("\x1b[2m");
    case Style::accent:
        return QLatin1String("\x1b[1;34m");
    case Style::plain:
        break;
    }
    return {};
}

} // namespace

Terminal Terminal::ofStandardOutput()
{
    Terminal terminal;
    terminal.isInteractive = isatty(STDOUT_FILENO) == 1;
    terminal.hasColours = terminal.isInteractive && qEnvironmentVariableIsEmpty("NO_COLOR") &&
                          qEnvironmentVariable("TERM") != QLatin1String("dumb");
    terminal.width = std::clamp(widthOfStandardOutput(terminal.width), minimumWidth, maximumWidth);
    return terminal;
}

QString Terminal::styled(QStringView text, Style style) const
{
    QString result;
    appendStyled(result, text, style);
    return result;
}

void Terminal::appendStyled(QString& result, QStringView text, Style style) const
{
    const bool isStyled = hasColours && style != Style::plain && !text.isEmpty();
    if (isStyled)
        result += sequence(style);
    result += text;
    if (isStyled)
        result += QLatin1String("\x1b[0m");
}

} // namespace quillo::cli
