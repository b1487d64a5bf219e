// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/DrawnPage.h"

#include "pdf/Limits.h"

#include <QGlyphRun>
#include <QPageSize>
#include <QPainter>
#include <QRawFont>
#include <QTextLayout>

#include <algorithm>

namespace pdf {
namespace {

struct Glyph
{
    QRawFont font;
    quint32 index = 0;
    QPointF position;
    bool isRightToLeft = false;
    /// The characters that it stands for.
    QString text;

    bool isSamePlace(const Glyph& other) const { return index == other.index && position == other.position; }
    bool goesOn(const Glyph& before) const
    {
        return font == before.font && isRightToLeft == before.isRightToLeft;
    }
};

/// Characters that are shown together, such as a letter with its accents or those of a ligature.
struct Cluster
{
    QString text;
    std::vector<Glyph> glyphs;

    bool contains(const Glyph& glyph) const
    {
        return std::any_of(
            glyphs.begin(), glyphs.end(), [&](const Glyph& g) { return g.isSamePlace(glyph); });
    }
};

/// Whether the glyph is the one that the font has for the character where it stands alone.
bool isOwnGlyph(const Glyph& glyph, const QString& character)
{
    const QList<quint32> indexes = glyph.font.glyphIndexesForString(character);
    return indexes.size() == 1 && indexes.front() == glyph.index;
}

std::vector<Glyph> glyphsOf(const QTextLayout& layout, qsizetype start, qsizetype length)
{
    std::vector<Glyph> glyphs;
    for (const QGlyphRun& run : layout.glyphRuns(static_cast<int>(start), static_cast<int>(length))) {
        const QList<quint32> indexes = run.glyphIndexes();
        const QList<QPointF> positions = run.positions();
        for (qsizetype i = 0; i < std::min(indexes.size(), positions.size()); ++i)
            glyphs.push_back({run.rawFont(), indexes[i], positions[i], run.isRightToLeft(), {}});
    }
    return glyphs;
}

std::vector<Cluster> clustersOf(const QTextLayout& layout)
{
    std::vector<Cluster> clusters;
    const QString text = layout.text();
    qsizetype length = 1;
    for (qsizetype i = 0; i < text.size(); i += length) {
        length = text[i].isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        std::vector<Glyph> glyphs = glyphsOf(layout, i, length);
        // For a character that does not begin a cluster the layout names the glyphs from the cluster's start.
        const bool isPartOfLast =
            !clusters.empty() && std::any_of(glyphs.begin(), glyphs.end(), [&](const Glyph& glyph) {
                return clusters.back().contains(glyph);
            });
        if (!isPartOfLast)
            clusters.emplace_back();
        Cluster& cluster = clusters.back();
        cluster.text += QStringView(text).mid(i, length);
        for (Glyph& glyph : glyphs) {
            if (!cluster.contains(glyph))
                cluster.glyphs.push_back(std::move(glyph));
        }
    }
    return clusters;
}

/// Shares the characters of the cluster out among its glyphs.
void nameGlyphs(Cluster& cluster)
{
    std::vector<Glyph>& glyphs = cluster.glyphs;
    const auto isNameless = [](const Glyph& glyph) { return glyph.text.isEmpty(); };
    QString rest;
    for (const char32_t character : cluster.text.toUcs4()) {
        const QString text = QString::fromUcs4(&character, 1);
        const auto own = std::find_if(glyphs.begin(), glyphs.end(), [&](const Glyph& glyph) {
            return isNameless(glyph) && isOwnGlyph(glyph, text);
        });
        if (own != glyphs.end())
            own->text = text;
        else
            rest += text;
    }
    const auto next = std::find_if(glyphs.begin(), glyphs.end(), isNameless);
    if (next != glyphs.end())
        next->text = rest;
    else if (!glyphs.empty())
        glyphs.back().text += rest;
    for (Glyph& glyph : glyphs) {
        // The box that stands for a character without a glyph is the same for all of them.
        if (glyph.index == 0)
            glyph.text.clear();
    }
}

std::vector<Glyph> namedGlyphsOf(const QTextLayout& layout)
{
    std::vector<Glyph> glyphs;
    for (Cluster& cluster : clustersOf(layout)) {
        nameGlyphs(cluster);
        std::move(cluster.glyphs.begin(), cluster.glyphs.end(), std::back_inserter(glyphs));
    }
    return glyphs;
}

void drawGlyphs(QPainter& painter, const QPointF& origin, const Glyph* begin, const Glyph* end)
{
    QList<quint32> indexes;
    QList<QPointF> positions;
    QStringList text;
    for (const Glyph* glyph = begin; glyph != end; ++glyph) {
        indexes.append(glyph->index);
        positions.append(glyph->position);
        text.append(glyph->text);
    }
    QGlyphRun run;
    run.setRawFont(begin->font);
    run.setGlyphIndexes(indexes);
    run.setPositions(positions);
    painter.drawGlyphRun(origin, run);
    if (auto* recorder = dynamic_cast<PageRecorder*>(painter.device()))
        recorder->addText(std::move(text));
}

QString firstCharacters(const QString& text)
{
    const QString cut = text.left(limits::drawnCharacters);
    return cut.size() < text.size() && cut.back().isHighSurrogate() ? cut.chopped(1) : cut;
}

} // namespace

PageRecorder::PageRecorder(QIODevice* device, const QSizeF& size, int dotsPerInch)
    : QPdfWriter(device)
{
    setResolution(dotsPerInch);
    setPageSize(QPageSize(size, QPageSize::Point, QString(), QPageSize::ExactMatch));
    setPageMargins({});
}

void drawText(QPainter& painter, const QPointF& baseline, const QString& text)
{
    QTextLayout layout(firstCharacters(text), painter.font(), painter.device());
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (line.isValid())
        line.setNumColumns(static_cast<int>(layout.text().size()));
    layout.endLayout();
    if (!line.isValid())
        return;
    const QPointF origin = baseline - QPointF(0, line.ascent());
    const std::vector<Glyph> glyphs = namedGlyphsOf(layout);
    const Glyph* const end = glyphs.data() + glyphs.size();
    for (const Glyph* begin = glyphs.data(); begin != end;) {
        const Glyph* next =
            std::find_if(begin, end, [&](const Glyph& glyph) { return !glyph.goesOn(*begin); });
        drawGlyphs(painter, origin, begin, next);
        begin = next;
    }
}

} // namespace pdf
