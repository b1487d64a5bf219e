// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

#include "documents/ManualText.h"
#include "writer/Document.h"

#include <array>

namespace samples {
namespace {

constexpr double left = 82;
constexpr double right = 513;
constexpr double width = right - left;
constexpr double leading = 17.5;
constexpr double topOfText = 660;

const Colour ink = colour(0x1E2A36);
const Colour quiet = colour(0x667788);
const Colour accent = colour(0x0F6F8F);
const Colour tint = colour(0xE8F2F5);
const Colour hairline = colour(0xC6D4DA);

class Manual
{
public:
    Manual()
        : m_document({"Tern 3 Weather Station: Operating Manual", "Tern Weather Instruments", "en-GB"})
    {
        for (std::size_t i = 0; i < manualChapters().size() + 2; ++i)
            m_pages.push_back(&m_document.addPage(a4));
    }

    std::string make()
    {
        drawCover();
        drawContents();
        int number = 0;
        for (const ManualChapter& chapter : manualChapters())
            drawChapter(++number, chapter);
        return m_document.finish();
    }

private:
    TextStyle plain(double size, const Colour& tone = ink) const
    {
        return {m_document.standardFont(Typeface::sans), size, tone};
    }
    TextStyle bold(double size, const Colour& tone = ink) const
    {
        return {m_document.standardFont(Typeface::sansBold), size, tone};
    }

    Page& chapterPage(int number) { return *m_pages.at(static_cast<std::size_t>(number) + 1); }
    static std::string pageLabel(int chapter) { return std::to_string(chapter + 2); }

    /// The mast unit, about 190 points high, standing on the point.
    static void drawStation(Canvas& canvas, double x, double y, const Colour& stroke)
    {
        canvas.line(x, y, x, y + 150, 5, stroke);
        canvas.line(x - 52, y + 150, x + 52, y + 150, 3, stroke);
        for (const double at : {x - 52, x, x + 52})
            canvas.line(at, y + 150, at, y + 166, 3, stroke);
        // Cups on the left, vane on the right, funnel in the middle.
        canvas.line(x - 74, y + 168, x - 30, y + 168, 2, stroke);
        for (const double at : {x - 76, x - 28})
            canvas.circle(at, y + 168, 8, stroke);
        canvas.polyline({x + 26, y + 168, x + 78, y + 168}, 2, stroke);
        canvas.polyline({x + 66, y + 161, x + 80, y + 168, x + 66, y + 175}, 2.5, stroke);
        canvas.polyline({x - 16, y + 184, x - 10, y + 164, x + 10, y + 164, x + 16, y + 184}, 3, stroke);
        for (int i = 0; i < 4; ++i)
            canvas.fillRounded({x - 20, y + 96 + 9.0 * i, 40, 6}, 3, stroke);
        canvas.fillRounded({x - 26, y + 52, 52, 26}, 3, stroke);
    }

    void drawCover()
    {
        Page& page = *m_pages[0];
        Canvas& canvas = page.canvas;
        canvas.fill({0, 0, a4.width, a4.height}, tint);
        canvas.fill({0, 0, a4.width, 150}, accent);
        drawStation(canvas, 430, 150, accent);
        canvas.text(left, 640, bold(44), "Tern 3");
        canvas.text(left, 606, plain(22, accent), "Weather Station");
        canvas.line(left, 584, left + 90, 584, 2, accent);
        canvas.text(left, 556, plain(14), "Operating Manual");
        canvas.text(left, 538, plain(12, quiet), "Installation, use, care and instructions for safety");
        canvas.text(left, 96, bold(12, colour(0xFFFFFF)), "Tern Weather Instruments");
        canvas.text(left, 79, plain(10, colour(0xD6E9EF)), "Second edition, January 2026");
        m_document.addOutlineEntry(0, "Cover", page, a4.height);
    }

    void drawContents()
    {
        Page& page = *m_pages[1];
        m_document.addOutlineEntry(0, "Table of contents", page, a4.height);
        page.canvas.text(left, 720, bold(26), "Table of Contents");
        double y = 672;
        int number = 0;
        for (const ManualChapter& chapter : manualChapters()) {
            ++number;
            page.canvas.text(left, y, bold(12.5, accent), std::to_string(number));
            page.canvas.text(left + 26, y, plain(12.5), chapter.title);
            page.canvas.text(right, y, plain(12.5), pageLabel(number), Alignment::right);
            page.canvas.raw("[0.8 3] 0 d");
            page.canvas.line(
                left + 34 + widthOf(plain(12.5), chapter.title), y + 1, right - 20, y + 1, 0.8, hairline);
            page.canvas.raw("[] 0 d");
            m_document.addLink(page, {left, y - 8, width, 24}, chapterPage(number), a4.height);
            y -= 31;
        }
        drawFoot(page, 2);
    }

    void drawFoot(Page& page, int number)
    {
        page.canvas.line(left, 58, right, 58, 0.5, hairline);
        page.canvas.text(left, 44, plain(8.5, quiet), "Tern 3 Operating Manual");
        page.canvas.text(right, 44, plain(8.5, quiet), std::to_string(number), Alignment::right);
    }

    void drawChapter(int number, const ManualChapter& chapter)
    {
        Page& page = chapterPage(number);
        m_document.addOutlineEntry(
            0, std::to_string(number) + "  " + std::string(chapter.title), page, a4.height);
        page.canvas.text(left, 744, bold(10, accent), "Chapter " + std::to_string(number));
        page.canvas.text(left, 714, bold(26), chapter.title);
        page.canvas.line(left, 696, left + 48, 696, 2, accent);
        double y = topOfText;
        int step = 0;
        for (const ManualBlock& block : chapter.blocks) {
            step = block.kind == ManualBlock::Kind::step ? step + 1 : 0;
            y = drawBlock(page, block, step, y);
        }
        drawFoot(page, number + 2);
    }

    /// Returns the baseline for what comes next.
    double drawBlock(Page& page, const ManualBlock& block, int step, double y)
    {
        using Kind = ManualBlock::Kind;
        Canvas& canvas = page.canvas;
        switch (block.kind) {
        case Kind::section:
            m_document.addOutlineEntry(1, block.text, page, y + 8);
            canvas.text(left, y - 8, bold(15), block.text);
            return y - 35;
        case Kind::paragraph:
            return canvas.paragraph(left, y, width, leading, plain(12), block.text) - 8;
        case Kind::bullet:
            canvas.circle(left + 6, y + 4, 2, accent);
            return canvas.paragraph(left + 18, y, width - 18, leading, plain(12), block.text) - 3;
        case Kind::step:
            canvas.text(left + 12, y, bold(12, accent), std::to_string(step) + ".", Alignment::right);
            return canvas.paragraph(left + 20, y, width - 20, leading, plain(12), block.text) - 4;
        case Kind::warning:
            return drawWarning(canvas, block.text, y);
        case Kind::tableRow:
            return drawTableRow(canvas, block.text, y);
        case Kind::figure:
            return drawFigure(canvas, block.text, y);
        case Kind::crossReference:
            return drawCrossReference(page, block, y);
        case Kind::webLink:
            canvas.text(left, y - 6, plain(12, accent), block.text);
            m_document.addLink(page, {left, y - 10, widthOf(plain(12), block.text), 16}, block.text);
            return y - 24;
        }
        return y;
    }

    double drawWarning(Canvas& canvas, std::string_view text, double y)
    {
        const TextStyle style = plain(11.5);
        const auto lines = wrapped(style, text, width - 32);
        const double height = static_cast<double>(lines.size()) * leading + 14;
        const Box box = {left, y + 4 - height + 4, width, height};
        canvas.fill(box, tint);
        canvas.fill({box.x, box.y, 3, box.height}, accent);
        canvas.paragraph(left + 18, y - 9, width - 32, leading, style, text);
        return box.y - 20;
    }

    double drawTableRow(Canvas& canvas, std::string_view text, double y)
    {
        const std::size_t bar = text.find('|');
        const double second = bar < 3 ? left + 26 : left + 172;
        const double firstEnd = canvas.paragraph(left + 4, y, 160, leading, bold(11.5), text.substr(0, bar));
        const double secondEnd =
            canvas.paragraph(second, y, right - second - 4, leading, plain(11.5), text.substr(bar + 1));
        const double end = std::min(firstEnd, secondEnd);
        canvas.line(left, end + 9, right, end + 9, 0.5, hairline);
        return end - 8;
    }

    double drawFigure(Canvas& canvas, std::string_view caption, double y)
    {
        const Box frame = {left, y - 256, width, 262};
        canvas.fillRounded(frame, 6, tint);
        const double x = frame.x + 150;
        const double foot = frame.y + 34;
        drawStation(canvas, x, foot, accent);
        const Box console = {frame.right() - 142, foot + 20, 104, 72};
        canvas.strokeRounded(console, 8, 3, accent);
        canvas.stroke({console.x + 10, console.y + 12, 62, 48}, 1.5, accent);
        canvas.circle(console.right() - 16, console.y + 44, 8, accent);
        canvas.circle(console.right() - 16, console.y + 20, 4, accent);
        const std::array<std::array<double, 3>, 6> marks = {{
            {1, x - 76, foot + 190},
            {2, x + 54, foot + 190},
            {3, x, foot + 202},
            {4, x + 38, foot + 113},
            {5, x + 44, foot + 65},
            {6, console.x + console.width / 2, console.top() + 18},
        }};
        for (const auto& [number, markX, markY] : marks) {
            canvas.circle(markX, markY, 8.5, colour(0xFFFFFF));
            canvas.text(markX, markY - 3.3, bold(9.5, accent), samples::number(number), Alignment::centre);
        }
        canvas.text(left + width / 2, frame.y + 12, plain(9, quiet), caption, Alignment::centre);
        return frame.y - 26;
    }

    double drawCrossReference(Page& page, const ManualBlock& block, double y)
    {
        const std::string text = std::string(block.text) + ": chapter " + std::to_string(block.chapter) +
                                 ", page " + pageLabel(block.chapter);
        page.canvas.text(left, y - 6, plain(12, accent), text);
        m_document.addLink(
            page, {left, y - 10, widthOf(plain(12), text), 16}, chapterPage(block.chapter), a4.height);
        return y - 24;
    }

    Document m_document;
    std::vector<Page*> m_pages;
};

} // namespace

std::string makeManual()
{
    return Manual().make();
}

} // namespace samples
