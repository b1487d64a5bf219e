// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/TextLayout.h"

#include <QTextBoundaryFinder>

#include <unicode/uchar.h>

#include <algorithm>

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

/// Calls `use` with every user-perceived character and its width, which is that of its first visible part.
template <typename Use>
void forEachCharacter(QStringView text, Use&& use)
{
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

/// Builds lines word by word.
class Lines
{
public:
    explicit Lines(int width)
        : m_width(width)
    {}

    void addWord(QStringView word)
    {
        const int wordWidth = displayWidth(word);
        const int gap = m_lineWidth > 0 ? 1 : 0;
        if (gap > 0 && m_lineWidth + gap + wordWidth > m_width)
            newLine();
        else if (gap > 0)
            append(QStringLiteral(" "), 1);
        if (wordWidth <= m_width)
            append(word, wordWidth);
        else
            forEachCharacter(word, [this](QStringView character, int width) {
                if (m_lineWidth > 0 && m_lineWidth + width > m_width)
                    newLine();
                append(character, width);
            });
    }

    void newLine()
    {
        m_lines.append(QString());
        m_lineWidth = 0;
    }

    QStringList take() { return std::move(m_lines); }

private:
    void append(QStringView text, int width)
    {
        m_lines.back() += text;
        m_lineWidth += width;
    }

    const int m_width;
    QStringList m_lines = {QString()};
    int m_lineWidth = 0;
};

} // namespace

int displayWidth(QStringView text)
{
    // Nothing below U+0300 combines or is wide, and most text is made of nothing else.
    const auto isSimple = [](QChar unit) { return unit.unicode() >= 0x20 && unit.unicode() < 0x300; };
    if (std::all_of(text.begin(), text.end(), isSimple))
        return static_cast<int>(text.size());
    int sum = 0;
    forEachCharacter(text, [&sum](QStringView, int width) { sum += width; });
    return sum;
}

QStringList wrapped(QStringView text, int width)
{
    Lines lines(width);
    bool isFirst = true;
    for (const QStringView paragraph : text.split(u'\n')) {
        if (!isFirst)
            lines.newLine();
        isFirst = false;
        for (const QStringView word : paragraph.split(u' ', Qt::SkipEmptyParts))
            lines.addWord(word);
    }
    return lines.take();
}

QString row(const std::vector<Cell>& cells, const Terminal& terminal, int indent)
{
    std::vector<QStringList> columns;
    qsizetype height = 0;
    for (const Cell& cell : cells) {
        columns.push_back(wrapped(cell.text, std::max(cell.width, 1)));
        height = std::max(height, columns.back().size());
    }

    QString result;
    for (qsizetype line = 0; line < height; ++line) {
        // Spaces are owed until something follows them.
        int owed = indent;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const QString text = columns[i].value(line);
            if (!text.isEmpty()) {
                result += QString(owed, QLatin1Char(' ')) + terminal.styled(text, cells[i].style);
                owed = 0;
            }
            owed += cells[i].width - displayWidth(text) + cellGap;
        }
        result += QLatin1Char('\n');
    }
    return result;
}

} // namespace quillo::cli
