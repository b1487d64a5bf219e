// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/TextColumns.h"

#include "pdf/BidiOrder.h"

#include <QChar>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace pdf {
namespace {

// In font sizes. Newspapers have gutters of a little more than the font size, books of about two; word spaces
// of justified text seldom reach the first.
constexpr float leastGutter = 0.9F;
constexpr float sameRow = 0.6F;
constexpr float leastRowDistance = 0.3F;
constexpr float mostRowDistance = 4.0F;
// Lines of one paragraph are seldom further apart than this.
constexpr float mostLineDistance = 1.45F;

constexpr float sameDirection = 0.999F;
constexpr float farAway = std::numeric_limits<float>::max();

constexpr std::size_t leastRows = 3;
// A row of more pieces than this is a table's, and so are rows that share more gutters.
constexpr std::size_t mostPieces = 12;
constexpr std::size_t mostGutters = 16;

// Running text: words in a line on average, where lines begin with small letters and elsewhere; which part of
// the lines has to begin so; how full the usual line is, compared with the fullest.
constexpr std::size_t leastWords = 3;
constexpr std::size_t manyWords = 4;
constexpr std::size_t smallLetterShare = 3;
constexpr float usualFill = 0.7F;
// Of how many pieces one may be of figures.
constexpr std::size_t figureShare = 4;
// A script without spaces has this many letters where others have a word.
constexpr std::size_t lettersOfWord = 3;

/// A part of a line between gaps as wide as a gutter. Never begins or ends with a space.
struct Piece
{
    std::size_t line;
    std::size_t first;
    std::size_t count;
    float from;
    float to;
};

/// Pieces from left to right, in the list of all.
struct Row
{
    std::size_t first;
    std::size_t count;
};

struct Gutter
{
    float from;
    float to;
    /// Those with text on both sides.
    std::size_t rows;
};

/// What a column's text looks like.
struct Look
{
    std::size_t pieces = 0;
    std::size_t figures = 0;
    std::size_t smallLetters = 0;
    std::size_t words = 0;
    std::vector<float> widths;

    bool isRunningText()
    {
        if (pieces < leastRows || figures * figureShare > pieces)
            return false;
        const auto middle = widths.begin() + static_cast<std::ptrdiff_t>(widths.size() / 2);
        std::nth_element(widths.begin(), middle, widths.end());
        const float usual = *middle;
        const bool isFull = usual > usualFill * *std::max_element(middle, widths.end());
        const bool wraps = smallLetters * smallLetterShare >= pieces - 1;
        return isFull && words >= (wraps ? leastWords : manyWords) * pieces;
    }
};

class ColumnSplitter
{
public:
    explicit ColumnSplitter(TextLines& text)
        : m_text(text)
    {}

    void split()
    {
        findPieces();
        // Most pages have a piece for every line.
        if (!m_hasGaps)
            return;
        findRows();
        for (std::size_t row = 0; row < m_rows.size(); ++row)
            takeRow(row);
        endGroup(m_rows.size());
        m_text.lines = std::move(m_lines);
    }

private:
    const TextLine& lineOf(const Piece& piece) const { return m_text.lines[piece.line]; }
    const TextLine& lineOf(const Row& row) const { return lineOf(m_pieces[row.first]); }
    const Piece& piece(const Row& row, std::size_t index) const { return m_pieces[row.first + index]; }

    void findPieces()
    {
        for (std::size_t i = 0; i < m_text.lines.size(); ++i) {
            const std::size_t before = m_pieces.size();
            if (!addPieces(i)) {
                const TextLine& line = m_text.lines[i];
                m_pieces.resize(before);
                m_pieces.push_back({i, line.first, line.count, line.extent.x0, line.extent.x1});
            }
            m_hasGaps = m_hasGaps || m_pieces.size() > before + 1 ||
                        (before > 0 && isSameRow(m_pieces[before - 1], m_pieces[before]));
        }
    }

    /// False where the line is to stay whole: nothing but spaces, or text that runs to the left.
    bool addPieces(std::size_t index)
    {
        const TextLine& line = m_text.lines[index];
        const float gutter = leastGutter * line.size;
        bool hasPiece = false;
        for (std::size_t i = line.first; i < line.first + line.count; ++i) {
            const TextCharacter& character = m_text.characters[i];
            if (character.code == ' ')
                continue;
            if (character.isRightToLeft || isRightToLeft(character.code))
                return false;
            if (!hasPiece || character.from - m_pieces.back().to > gutter)
                m_pieces.push_back({index, i, 1, character.from, character.to});
            hasPiece = true;
            Piece& piece = m_pieces.back();
            piece.count = i + 1 - piece.first;
            piece.to = std::max(piece.to, character.to);
        }
        return hasPiece;
    }

    /// Whether a piece is the next one to the right. The lines of columns need not be at the same height.
    bool isSameRow(const Piece& last, const Piece& next) const
    {
        if (last.line == next.line)
            return true;
        const TextLine& a = lineOf(last);
        const TextLine& b = lineOf(next);
        const float size = std::min(a.size, b.size);
        return a.direction.x * b.direction.x + a.direction.y * b.direction.y >= sameDirection &&
               std::fabs(a.extent.y1 - b.extent.y1) < size * sameRow &&
               next.from - last.to > size * leastGutter;
    }

    void findRows()
    {
        for (std::size_t i = 0; i < m_pieces.size(); ++i) {
            if (i > 0 && isSameRow(m_pieces[i - 1], m_pieces[i]))
                ++m_rows.back().count;
            else
                m_rows.push_back({i, 1});
        }
    }

    bool follows(const Row& last, const Row& next) const
    {
        const TextLine& a = lineOf(last);
        const TextLine& b = lineOf(next);
        const float size = std::max(a.size, b.size);
        const float distance = b.extent.y1 - a.extent.y1;
        return a.direction.x * b.direction.x + a.direction.y * b.direction.y >= sameDirection &&
               distance > size * leastRowDistance && distance < size * mostRowDistance;
    }

    /// Adds the row to the group of rows that share gutters, or begins a new one.
    void takeRow(std::size_t index)
    {
        const Row& row = m_rows[index];
        if (!m_gutters.empty() && row.count <= mostPieces && follows(m_rows[index - 1], row) &&
            keepsGutters(row)) {
            std::swap(m_gutters, m_nextGutters);
            return;
        }
        endGroup(index);
        m_groupStart = index;
        m_gutters.clear();
        if (row.count > mostPieces)
            return;
        for (std::size_t i = 1; i < row.count; ++i)
            m_gutters.push_back({piece(row, i - 1).to, piece(row, i).from, 1});
    }

    /// Finds what of the gutters the row leaves white. False if it crosses them, or one that is established.
    bool keepsGutters(const Row& row)
    {
        m_nextGutters.clear();
        const float least = leastGutter * lineOf(row).size;
        for (const Gutter& gutter : m_gutters) {
            bool isKept = false;
            for (std::size_t i = 0; i <= row.count; ++i) {
                const float from = std::max(gutter.from, i == 0 ? -farAway : piece(row, i - 1).to);
                const float to = std::min(gutter.to, i == row.count ? farAway : piece(row, i).from);
                if (to - from < least)
                    continue;
                const bool isBetween = i > 0 && i < row.count;
                m_nextGutters.push_back({from, to, gutter.rows + (isBetween ? 1 : 0)});
                isKept = true;
            }
            if (!isKept && gutter.rows >= leastRows)
                return false;
        }
        return !m_nextGutters.empty() && m_nextGutters.size() <= mostGutters;
    }

    /// Hands on the rows before this one that are not handed on yet: by columns if they are some, by rows
    /// else.
    void endGroup(std::size_t end)
    {
        keepRunningText(end);
        if (m_gutters.empty()) {
            for (std::size_t row = m_groupStart; row < end; ++row)
                addRow(m_rows[row]);
            return;
        }
        for (std::size_t column = 0; column <= m_gutters.size(); ++column) {
            for (std::size_t row = m_groupStart; row < end; ++row)
                addColumnOfRow(m_rows[row], column);
        }
    }

    /// Keeps the gutters that have running text on both sides.
    void keepRunningText(std::size_t end)
    {
        m_gutters.erase(
            std::remove_if(
                m_gutters.begin(), m_gutters.end(),
                [](const Gutter& gutter) { return gutter.rows < leastRows; }),
            m_gutters.end());
        if (isHole(end))
            m_gutters.clear();
        if (m_gutters.empty())
            return;
        std::vector<bool> isRunning;
        for (std::size_t column = 0; column <= m_gutters.size(); ++column)
            isRunning.push_back(lookOf(column, end).isRunningText());
        std::size_t kept = 0;
        for (std::size_t i = 0; i < m_gutters.size(); ++i) {
            if (isRunning[i] && isRunning[i + 1])
                m_gutters[kept++] = m_gutters[i];
        }
        m_gutters.resize(kept);
    }

    /// Whether the gutters are a hole in a paragraph, as a picture or a redaction leaves it: the lines right
    /// above and below run through.
    bool isHole(std::size_t end) const
    {
        return m_groupStart > 0 && end < m_rows.size() &&
               isLineThrough(m_rows[m_groupStart - 1], m_rows[m_groupStart]) &&
               isLineThrough(m_rows[end], m_rows[end - 1]);
    }

    bool isLineThrough(const Row& row, const Row& neighbour) const
    {
        const TextLine& line = lineOf(row);
        const TextLine& other = lineOf(neighbour);
        const float size = std::min(line.size, other.size);
        if (std::fabs(line.extent.y1 - other.extent.y1) > size * mostLineDistance)
            return false;
        const auto isCrossed = [&](const Gutter& gutter) {
            for (std::size_t i = 0; i < row.count; ++i) {
                if (piece(row, i).from < gutter.from && piece(row, i).to > gutter.to)
                    return true;
            }
            return false;
        };
        return std::any_of(m_gutters.begin(), m_gutters.end(), isCrossed);
    }

    std::size_t columnOf(const Piece& piece) const
    {
        const auto after = std::find_if(
            m_gutters.begin(), m_gutters.end(), [&](const Gutter& gutter) { return piece.from < gutter.to; });
        return static_cast<std::size_t>(after - m_gutters.begin());
    }

    Look lookOf(std::size_t column, std::size_t end) const
    {
        Look look;
        for (std::size_t index = m_groupStart; index < end; ++index) {
            const Row& row = m_rows[index];
            std::size_t first = 0;
            while (first < row.count && columnOf(piece(row, first)) < column)
                ++first;
            std::size_t last = first;
            while (last < row.count && columnOf(piece(row, last)) == column)
                ++last;
            if (last > first)
                lookAt(row, first, last, look);
        }
        return look;
    }

    /// Looks at the pieces of a row in one column, from one to before another.
    void lookAt(const Row& row, std::size_t first, std::size_t last, Look& look) const
    {
        std::size_t letters = 0;
        std::size_t others = 0;
        std::size_t words = 0;
        std::size_t uncased = 0;
        look.smallLetters += QChar::isLower(m_text.characters[piece(row, first).first].code) ? 1 : 0;
        for (std::size_t i = first; i < last; ++i) {
            const Piece& part = piece(row, i);
            ++words;
            for (std::size_t at = part.first; at < part.first + part.count; ++at) {
                const char32_t code = m_text.characters[at].code;
                const bool isLetter = QChar::isLetter(code);
                const bool isSpace = code == ' ';
                letters += isLetter ? 1 : 0;
                others += !isLetter && !isSpace ? 1 : 0;
                words += isSpace && m_text.characters[at - 1].code != ' ' ? 1 : 0;
                uncased += QChar::category(code) == QChar::Letter_Other ? 1 : 0;
            }
        }
        ++look.pieces;
        look.figures += others > letters ? 1 : 0;
        look.words += std::max(words, uncased / lettersOfWord);
        look.widths.push_back(piece(row, last - 1).to - piece(row, first).from);
    }

    /// The row's lines as they are.
    void addRow(const Row& row)
    {
        for (std::size_t i = 0; i < row.count; ++i) {
            if (i == 0 || piece(row, i).line != piece(row, i - 1).line)
                m_lines.push_back(lineOf(piece(row, i)));
        }
    }

    /// What of the row's lines stands in a column.
    void addColumnOfRow(const Row& row, std::size_t column)
    {
        const Piece* last = nullptr;
        for (std::size_t i = 0; i < row.count; ++i) {
            const Piece& part = piece(row, i);
            if (columnOf(part) != column)
                continue;
            if (!last || last->line != part.line) {
                m_lines.push_back(lineOf(part));
                m_lines.back().first = part.first;
                m_lines.back().extent.x0 = part.from;
            }
            TextLine& line = m_lines.back();
            line.count = part.first + part.count - line.first;
            line.extent.x1 = part.to;
            last = &part;
        }
    }

    TextLines& m_text;
    std::vector<Piece> m_pieces;
    std::vector<Row> m_rows;
    bool m_hasGaps = false;

    /// The rows that share the gutters begin here.
    std::size_t m_groupStart = 0;
    std::vector<Gutter> m_gutters;
    std::vector<Gutter> m_nextGutters;
    std::vector<TextLine> m_lines;
};

} // namespace

void splitColumns(TextLines& text)
{
    ColumnSplitter(text).split();
}

} // namespace pdf
