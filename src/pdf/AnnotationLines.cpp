// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/AnnotationLines.h"

#include "pdf/ReadingOrder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <optional>
#include <tuple>
#include <utility>

namespace pdf {
namespace {

// Distances in font sizes. A label beside a field stands this near, or else one right above it comes first.
constexpr float besideGap = 3.0F;
constexpr float aboveGap = 1.5F;
constexpr float sameEdge = 1.25F;
constexpr float slack = 0.3F;

// Of the lower one of two lines on the same row, how much has to lie beside the other: values stand a little
// higher or lower than their labels.
constexpr float sharedHeight = 0.2F;

// What a line's extent tells of its font size, see TextLine.
constexpr float coreHeight = 0.5F;

// Directions whose cosine is above this are the same.
constexpr float sameDirection = 0.999F;

// Comparing so many pairs of lines is a matter of some ten milliseconds.
constexpr std::size_t mostComparisons = 20'000'000;

float dot(fz_point a, fz_point b)
{
    return a.x * b.x + a.y * b.y;
}

/// A rectangle of display space as a line's extent is measured.
fz_rect along(const fz_rect& box, fz_point direction)
{
    const std::array<fz_point, 4> corners = {
        fz_point{box.x0, box.y0}, fz_point{box.x1, box.y0}, fz_point{box.x0, box.y1},
        fz_point{box.x1, box.y1}};
    constexpr float farAway = std::numeric_limits<float>::max();
    fz_rect result = {farAway, farAway, -farAway, -farAway};
    for (const fz_point corner : corners) {
        const float x = dot(corner, direction);
        const float y = dot(corner, {-direction.y, direction.x});
        result = {
            std::min(result.x0, x), std::min(result.y0, y), std::max(result.x1, x), std::max(result.y1, y)};
    }
    return result;
}

float overlap(float from1, float to1, float from2, float to2)
{
    return std::min(to1, to2) - std::max(from1, from2);
}

/// How far two stretches are apart; 0 where they meet.
float gap(float from1, float to1, float from2, float to2)
{
    return std::max({from2 - to1, from1 - to2, 0.0F});
}

/// A space over the gap between two characters of a line.
TextCharacter spaceBetween(const TextCharacter& a, const TextCharacter& b, fz_point direction)
{
    const float end = std::max(a.to, b.from);
    const float middle = (a.from + a.to) / 2;
    const fz_point centre = {(a.box.x0 + a.box.x1) / 2, (a.box.y0 + a.box.y1) / 2};
    const fz_point first = {
        centre.x + direction.x * (a.to - middle), centre.y + direction.y * (a.to - middle)};
    const fz_point last = {centre.x + direction.x * (end - middle), centre.y + direction.y * (end - middle)};
    const float width = (a.box.x1 - a.box.x0) / 2 * std::fabs(direction.y);
    const float height = (a.box.y1 - a.box.y0) / 2 * std::fabs(direction.x);
    const fz_rect box = {
        std::min(first.x, last.x) - width, std::min(first.y, last.y) - height,
        std::max(first.x, last.x) + width, std::max(first.y, last.y) + height};
    return {' ', box, a.to, end, false};
}

/// The lines of an annotation in the order of reading.
struct Piece
{
    std::vector<TextCharacter> characters;
    std::vector<TextLine> lines;
    /// Where the annotation is, along and across its first line.
    fz_rect area = {};

    const TextLine& first() const { return lines.front(); }
};

std::optional<Piece> pieceOf(const AnnotationGlyphs& annotation)
{
    TextLines text = textLines(annotation.glyphs);
    const auto isVisible = [](const TextCharacter& character) { return character.code != ' '; };
    if (std::none_of(text.characters.begin(), text.characters.end(), isVisible))
        return std::nullopt;
    Piece piece;
    for (const std::size_t index : readingOrder(text.lines))
        piece.lines.push_back(text.lines[index]);
    piece.characters = std::move(text.characters);
    piece.area = along(annotation.area, piece.first().direction);
    return piece;
}

class Placer
{
public:
    Placer(TextLines& page, std::vector<std::size_t>& order)
        : m_page(page)
        , m_order(order)
        , m_contentLines(page.lines.size())
    {}

    void place(const Piece& piece)
    {
        const TextLine& first = piece.first();
        const float size = (first.extent.y1 - first.extent.y0) / coreHeight;
        auto beside = nearestBeside(piece, 0, m_contentLines);
        const auto label = beside && beside->gap <= besideGap * size ? std::nullopt : labelAbove(piece, size);
        if (!beside && !label)
            beside = nearestBeside(piece, m_contentLines, m_page.lines.size());
        if (beside && !label) {
            join(beside->line, piece);
            insert(placeOf(beside->line) + 1, piece, 1);
        } else if (label) {
            insert(placeOf(*label) + 1, piece, 0);
        } else {
            insert(placeInColumn(piece, size), piece, 0);
        }
    }

    /// Puts the annotation after all others.
    void append(const Piece& piece) { insert(m_order.size(), piece, 0); }

    /// Writes the lines that annotations have become part of.
    void finish()
    {
        for (auto& [line, parts] : m_joined)
            write(m_page.lines[line], parts);
    }

private:
    struct Neighbour
    {
        std::size_t line = 0;
        float gap = 0;
    };

    static bool isSameDirection(const TextLine& a, const TextLine& b)
    {
        return dot(a.direction, b.direction) > sameDirection;
    }

    static bool isOnSameRow(const TextLine& a, const TextLine& b)
    {
        const float shorter = std::min(a.extent.y1 - a.extent.y0, b.extent.y1 - b.extent.y0);
        return isSameDirection(a, b) &&
               overlap(a.extent.y0, a.extent.y1, b.extent.y0, b.extent.y1) >= shorter * sharedHeight;
    }

    /// A narrow line below a long one may begin anywhere, so a little is enough.
    static bool isInColumn(const TextLine& line, const Piece& piece, float size)
    {
        return isSameDirection(line, piece.first()) &&
               overlap(line.extent.x0, line.extent.x1, piece.area.x0, piece.area.x1) > slack * size;
    }

    /// The nearest of some lines that stand on the same row.
    std::optional<Neighbour> nearestBeside(const Piece& piece, std::size_t from, std::size_t to) const
    {
        std::optional<Neighbour> nearest;
        const TextLine& first = piece.first();
        std::pair<float, float> least;
        for (std::size_t i = from; i < to; ++i) {
            const TextLine& line = m_page.lines[i];
            if (!isOnSameRow(line, first))
                continue;
            // A field may be much wider than its value, so its edges tell what belongs to it.
            const std::pair distance = {
                gap(line.extent.x0, line.extent.x1, piece.area.x0, piece.area.x1),
                gap(line.extent.x0, line.extent.x1, first.extent.x0, first.extent.x1)};
            if (nearest && distance >= least)
                continue;
            least = distance;
            nearest = {i, distance.first};
        }
        return nearest;
    }

    /// The line of the content that ends right above the annotation or its text and begins where it begins.
    std::optional<std::size_t> labelAbove(const Piece& piece, float size) const
    {
        std::optional<std::size_t> lowest;
        const float textTop = piece.first().extent.y0;
        for (std::size_t i = 0; i < m_contentLines; ++i) {
            const TextLine& line = m_page.lines[i];
            const float foot = line.extent.y1;
            const bool isNear =
                foot <= textTop + slack * size && std::min(piece.area.y0, textTop) - foot <= aboveGap * size;
            if (isNear && isSameDirection(line, piece.first()) &&
                std::fabs(line.extent.x0 - piece.area.x0) <= sameEdge * size &&
                (!lowest || foot > m_page.lines[*lowest].extent.y1))
                lowest = i;
        }
        return lowest;
    }

    /// After what is nearest above in the column, else before what is nearest below, else after what is
    /// nearest above on the page.
    std::size_t placeInColumn(const Piece& piece, float size) const
    {
        const fz_rect& extent = piece.first().extent;
        std::optional<std::size_t> above;
        std::optional<std::size_t> below;
        std::optional<std::size_t> anyAbove;
        const auto foot = [&](std::size_t line) { return m_page.lines[line].extent.y1; };
        for (std::size_t i = 0; i < m_order.size(); ++i) {
            const std::size_t index = m_order[i];
            const TextLine& line = m_page.lines[index];
            if (!isSameDirection(line, piece.first()))
                continue;
            const bool isAbove = line.extent.y1 <= extent.y0 + slack * size;
            if (isAbove && (!anyAbove || foot(index) >= foot(m_order[*anyAbove])))
                anyAbove = i;
            if (!isInColumn(line, piece, size))
                continue;
            if (isAbove && (!above || foot(index) >= foot(m_order[*above])))
                above = i;
            if (!isAbove && (!below || foot(index) < foot(m_order[*below])))
                below = i;
        }
        if (above)
            return *above + 1;
        if (below)
            return *below;
        return anyAbove ? *anyAbove + 1 : m_order.size();
    }

    std::size_t placeOf(std::size_t line) const
    {
        return static_cast<std::size_t>(std::find(m_order.begin(), m_order.end(), line) - m_order.begin());
    }

    /// Takes in the lines of the annotation from the given one on.
    void insert(std::size_t place, const Piece& piece, std::size_t from)
    {
        const std::size_t offset = addCharacters(piece);
        const std::size_t firstLine = m_page.lines.size();
        for (std::size_t i = from; i < piece.lines.size(); ++i) {
            m_page.lines.push_back(piece.lines[i]);
            m_page.lines.back().first += offset;
        }
        std::vector<std::size_t> added(m_page.lines.size() - firstLine);
        std::iota(added.begin(), added.end(), firstLine);
        m_order.insert(m_order.begin() + static_cast<std::ptrdiff_t>(place), added.begin(), added.end());
    }

    void join(std::size_t host, const Piece& piece)
    {
        TextLine part = piece.first();
        part.first += addCharacters(piece);
        m_joined[host].push_back(part);
        TextLine& line = m_page.lines[host];
        line.extent.x0 = std::min(line.extent.x0, part.extent.x0);
        line.extent.x1 = std::max(line.extent.x1, part.extent.x1);
        line.top = std::min(line.top, part.top);
        line.foot = std::max(line.foot, part.foot);
    }

    std::size_t addCharacters(const Piece& piece)
    {
        const std::size_t offset = m_page.characters.size();
        m_page.characters.insert(m_page.characters.end(), piece.characters.begin(), piece.characters.end());
        return offset;
    }

    bool isRightToLeft(const TextLine& line) const
    {
        for (std::size_t i = line.first; i < line.first + line.count; ++i) {
            if (m_page.characters[i].isRightToLeft)
                return true;
        }
        return false;
    }

    /// The line's character before which a part goes that begins there: the first of a word.
    std::size_t wordAfter(const TextLine& line, const TextLine& part) const
    {
        const auto at = [&](std::size_t i) -> const TextCharacter& { return m_page.characters[i]; };
        const std::size_t end = line.first + line.count;
        if (isRightToLeft(line))
            return part.extent.x0 >= at(line.first).to ? line.first : end;
        for (std::size_t i = line.first; i < end; ++i) {
            const bool isStart = at(i).code != ' ' && (i == line.first || at(i - 1).code == ' ');
            if (isStart && at(i).from >= part.extent.x0)
                return i;
        }
        return end;
    }

    /// Writes the line anew with the parts that have joined it.
    void write(TextLine& line, std::vector<TextLine>& parts)
    {
        std::stable_sort(parts.begin(), parts.end(), [](const TextLine& a, const TextLine& b) {
            return a.extent.x0 < b.extent.x0;
        });
        std::vector<TextCharacter> written;
        const auto append = [&](std::size_t from, std::size_t to) {
            if (from == to)
                return;
            const TextCharacter& next = m_page.characters[from];
            if (!written.empty() && written.back().code != ' ' && next.code != ' ')
                written.push_back(spaceBetween(written.back(), next, line.direction));
            for (std::size_t i = from; i < to; ++i)
                written.push_back(m_page.characters[i]);
        };
        std::size_t done = line.first;
        for (const TextLine& part : parts) {
            const std::size_t next = std::max(done, wordAfter(line, part));
            append(done, next);
            append(part.first, part.first + part.count);
            done = next;
        }
        append(done, line.first + line.count);
        line.first = m_page.characters.size();
        line.count = written.size();
        m_page.characters.insert(m_page.characters.end(), written.begin(), written.end());
    }

    TextLines& m_page;
    std::vector<std::size_t>& m_order;
    const std::size_t m_contentLines;
    /// What has become part of which line.
    std::map<std::size_t, std::vector<TextLine>> m_joined;
};

} // namespace

void addAnnotations(
    TextLines& page, std::vector<std::size_t>& order, const std::vector<AnnotationGlyphs>& annotations)
{
    std::vector<Piece> pieces;
    std::size_t lineCount = page.lines.size();
    for (const AnnotationGlyphs& annotation : annotations) {
        if (auto piece = pieceOf(annotation)) {
            lineCount += piece->lines.size();
            pieces.push_back(*std::move(piece));
        }
    }
    const bool areFew = pieces.size() * lineCount <= mostComparisons;
    if (areFew) {
        std::stable_sort(pieces.begin(), pieces.end(), [](const Piece& a, const Piece& b) {
            const fz_rect& first = a.first().extent;
            const fz_rect& second = b.first().extent;
            return std::tie(first.y1, first.x0) < std::tie(second.y1, second.x0);
        });
    }
    Placer placer(page, order);
    for (const Piece& piece : pieces)
        areFew ? placer.place(piece) : placer.append(piece);
    placer.finish();
}

} // namespace pdf
