// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/TextLayout.h"

#include <QStringTokenizer>
#include <QTextBoundaryFinder>

#include <unicode/uchar.h>

#include <algorithm>
#include <utility>

namespace quillo::cli {
namespace {

int characterWidth(char32_t point)
{
    switch (u_charType(static_cast<UChar32>(point))) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
        return 0;
    default:
        break;
    }
    const int kind = u_getIntPropertyValue(static_cast<UChar32>(point), UCHAR_EAST_ASIAN_WIDTH);
    return kind == U_EA_WIDE || kind == U_EA_FULLWIDTH ? 2 : 1;
}

/// Nothing below U+0300 combines or is wide, and most text is made of nothing else.
bool isSimple(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar unit) {
        return unit.unicode() >= 0x20 && unit.unicode() < 0x300;
    });
}

/// Calls `use` with every user-perceived character and its width, which is that of its first visible part.
template <typename Use>
void forEachCharacter(QStringView text, Use&& use)
{
    if (isSimple(text)) {
        for (qsizetype i = 0; i < text.size(); ++i)
            use(text.sliced(i, 1), 1);
        return;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    qsizetype start = 0;
    for (qsizetype end = finder.toNextBoundary(); end > start; end = finder.toNextBoundary()) {
        const QStringView character = text.mid(start, end - start);
        int width = 0;
        for (const char32_t point : character.toUcs4())
            width = std::max(width, characterWidth(point));
        use(character, width);
        start = end;
    }
}

/// A line and the columns that it takes.
struct Line
{
    QStringView text;
    int width = 0;
};

/// Cuts text into lines without copying any of it.
class Lines
{
public:
    /// `areSimple` says that all characters of the text are, as isSimple() has it.
    Lines(int width, bool areSimple)
        : m_width(width)
        , m_areSimple(areSimple)
    {
        // Most texts of a report need no more.
        m_lines.reserve(2);
    }

    /// There is one space between two words of the text and none at its ends.
    void add(QStringView paragraph)
    {
        m_lines.push_back({paragraph.first(0), 0});
        for (const QStringView word : QStringTokenizer(paragraph, u' ', Qt::SkipEmptyParts))
            addWord(word);
    }

    std::vector<Line> take() { return std::move(m_lines); }

private:
    void addWord(QStringView word)
    {
        const int wordWidth = m_areSimple ? static_cast<int>(word.size()) : displayWidth(word);
        const bool isFirst = m_lines.back().text.isEmpty();
        if (isFirst || m_lines.back().width + 1 + wordWidth > m_width)
            beginLine(word, isFirst);
        else
            ++m_lines.back().width;
        if (wordWidth <= m_width) {
            extend(word, wordWidth);
            return;
        }
        forEachCharacter(word, [this](QStringView character, int width) {
            if (m_lines.back().width > 0 && m_lines.back().width + width > m_width)
                beginLine(character, false);
            extend(character, width);
        });
    }

    /// The line begins where the text does.
    void beginLine(QStringView text, bool replacesLast)
    {
        if (replacesLast)
            m_lines.pop_back();
        m_lines.push_back({text.first(0), 0});
    }

    /// Lets the line reach to the end of the text.
    void extend(QStringView text, int width)
    {
        Line& line = m_lines.back();
        line.text = QStringView(line.text.begin(), text.end());
        line.width += width;
    }

    const int m_width;
    const bool m_areSimple;
    std::vector<Line> m_lines;
};

/// True where every line of the text has one space between two words and none at its ends.
bool isTidy(QStringView text)
{
    QChar last = QLatin1Char('\n');
    for (const QChar character : text) {
        const bool isBreak = character == QLatin1Char(' ') || character == QLatin1Char('\n');
        if (isBreak &&
            (last == QLatin1Char(' ') || (character == QLatin1Char(' ') && last == QLatin1Char('\n'))))
            return false;
        last = character;
    }
    return last != QLatin1Char(' ');
}

QString tidied(QStringView text)
{
    QString result;
    for (const QStringView paragraph : QStringTokenizer(text, u'\n')) {
        for (const QStringView word : QStringTokenizer(paragraph, u' ', Qt::SkipEmptyParts))
            result.append(word).append(QLatin1Char(' '));
        if (result.endsWith(QLatin1Char(' ')))
            result.chop(1);
        result += QLatin1Char('\n');
    }
    result.chop(1);
    return result;
}

std::vector<Line> linesOf(QStringView tidyText, int width)
{
    // A line feed is not simple.
    if (isSimple(tidyText)) {
        const int textWidth = static_cast<int>(tidyText.size());
        if (textWidth <= width)
            return {{tidyText, textWidth}};
        Lines lines(width, true);
        lines.add(tidyText);
        return lines.take();
    }
    Lines lines(width, false);
    for (const QStringView paragraph : QStringTokenizer(tidyText, u'\n'))
        lines.add(paragraph);
    return lines.take();
}

/// A cell's text and its lines, which are parts of it.
struct Column
{
    explicit Column(const Cell& cell)
        : text(isTidy(cell.text) ? cell.text : tidied(cell.text))
        , lines(linesOf(text, std::max(cell.width, 1)))
    {}

    const QString text;
    const std::vector<Line> lines;
};

} // namespace

int displayWidth(QStringView text)
{
    if (isSimple(text))
        return static_cast<int>(text.size());
    int sum = 0;
    forEachCharacter(text, [&sum](QStringView, int width) { sum += width; });
    return sum;
}

QStringList wrapped(QStringView text, int width)
{
    const Column column({text.toString(), Style::plain, width});
    QStringList result;
    for (const Line& line : column.lines)
        result.append(line.text.toString());
    return result;
}

QString row(const std::vector<Cell>& cells, const Terminal& terminal, int indent)
{
    std::vector<Column> columns;
    columns.reserve(cells.size());
    std::size_t height = 0;
    for (const Cell& cell : cells)
        height = std::max(height, columns.emplace_back(cell).lines.size());

    QString result;
    result.reserve(static_cast<qsizetype>(height) * terminal.width);
    for (std::size_t number = 0; number < height; ++number) {
        // Spaces are owed until something follows them.
        int owed = indent;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const auto& lines = columns[i].lines;
            const Line line = number < lines.size() ? lines[number] : Line();
            if (!line.text.isEmpty()) {
                result.resize(result.size() + owed, QLatin1Char(' '));
                terminal.appendStyled(result, line.text, cells[i].style);
                owed = 0;
            }
            owed += cells[i].width - line.width + cellGap;
        }
        result += QLatin1Char('\n');
    }
    return result;
}

} // namespace quillo::cli
