// SPDX-License-Identifier: AGPL-3.0-or-later
#include "writer/EmojiFont.h"

#include "writer/Canvas.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace samples {
namespace {

// Every glyph fills a square of 1000 units, moved down so that it sits well beside letters.
constexpr double advance = 1150;
constexpr std::string_view placement = "1 0 0 1 75 -140 cm";

const Colour yellow = colour(0xFFC83D);
const Colour brown = colour(0x6B3F1D);
const Colour white = colour(0xFFFFFF);
const Colour grey = colour(0x3F4650);

void drawFace(Canvas& canvas)
{
    canvas.circle(500, 500, 470, yellow);
    canvas.circle(345, 610, 62, brown);
    canvas.circle(655, 610, 62, brown);
    canvas.raw("q 0.42 0.247 0.114 rg 220 440 m 250 130 750 130 780 440 c h f Q");
    canvas.raw("q 1 1 1 rg 262 440 m 280 370 720 370 738 440 c h f Q");
}

void drawSun(Canvas& canvas)
{
    for (const auto& [x, y] :
         {std::pair(0, 440), std::pair(311, 311), std::pair(440, 0), std::pair(311, -311), std::pair(0, -440),
          std::pair(-311, -311), std::pair(-440, 0), std::pair(-311, 311)})
        canvas.line(500 + x * 0.68, 500 + y * 0.68, 500 + x, 500 + y, 80, yellow);
    canvas.circle(500, 500, 235, yellow);
}

void drawCup(Canvas& canvas)
{
    canvas.strokeRounded({600, 300, 300, 250}, 120, 70, colour(0xE6E9EE));
    canvas.fillRounded({150, 160, 600, 470}, 130, colour(0xE6E9EE));
    canvas.fillRounded({205, 520, 490, 80}, 40, brown);
    canvas.fillRounded({80, 70, 740, 70}, 35, colour(0xC3C9D2));
    canvas.raw("q 1 J");
    for (const double x : {330.0, 450.0, 570.0})
        canvas.line(x, 720, x + 20, 900, 34, colour(0xAEB6C2));
    canvas.raw("Q");
}

void drawPan(Canvas& canvas)
{
    canvas.raw("q 1 J");
    canvas.line(640, 360, 930, 70, 100, grey);
    canvas.raw("Q");
    canvas.circle(420, 560, 410, grey);
    canvas.circle(420, 560, 350, colour(0x5A626E));
    canvas.circle(370, 590, 235, white);
    canvas.circle(490, 500, 190, white);
    canvas.circle(395, 570, 110, colour(0xFFB000));
}

void drawMoon(Canvas& canvas)
{
    canvas.raw("q 1 0.784 0.239 rg 640 930 m 380 900 170 700 170 450 c 170 170 400 40 600 60 c 740 75 850 "
               "160 890 260 c "
               "760 200 560 230 470 390 c 380 560 450 790 640 930 c h f Q");
}

void drawHeart(Canvas& canvas)
{
    canvas.raw("q 0.863 0.184 0.259 rg 500 90 m 300 260 60 430 60 660 c 60 820 180 920 300 920 c 390 920 460 "
               "870 500 790 c "
               "540 870 610 920 700 920 c 820 920 940 820 940 660 c 940 430 700 260 500 90 c h f Q");
}

struct Drawing
{
    char32_t character;
    void (*draw)(Canvas&);
};

// A glyph's code is its place in the table, counted from 1.
constexpr std::array<Drawing, 6> drawings = {{
    {U'\u2600', drawSun},
    {U'\u2615', drawCup},
    {U'\u2764', drawHeart},
    {U'\U0001F319', drawMoon},
    {U'\U0001F373', drawPan},
    {U'\U0001F600', drawFace},
}};

std::string encode(std::string_view utf8)
{
    std::string codes;
    for (const char32_t point : codePoints(utf8)) {
        const auto* const found =
            std::find_if(drawings.begin(), drawings.end(), [point](const Drawing& drawing) {
                return drawing.character == point;
            });
        if (found == drawings.end())
            throw std::invalid_argument("no drawing for a character of: " + std::string(utf8));
        codes += static_cast<char>(found - drawings.begin() + 1);
    }
    return codes;
}

} // namespace

double EmojiFont::width(std::string_view utf8) const
{
    return advance * static_cast<double>(encode(utf8).size());
}

std::string EmojiFont::show(std::string_view utf8)
{
    return literal(encode(utf8)) + "Tj";
}

PdfFile::Ref EmojiFont::write(PdfFile& file) const
{
    std::string procedures;
    std::string names;
    std::string letters;
    for (std::size_t i = 0; i < drawings.size(); ++i) {
        Canvas canvas;
        canvas.raw(number(advance) + " 0 d0");
        canvas.raw(placement);
        drawings[i].draw(canvas);
        const std::string name = "/emoji" + std::to_string(i + 1);
        procedures +=
            name + " " + reference(file.addStream("", canvas.content(), PdfFile::Compression::none));
        names += name;
        letters += "<0" + std::to_string(i + 1) + "><" + utf16Hex({&drawings[i].character, 1}) + ">\n";
    }
    const std::string count = std::to_string(drawings.size());
    const PdfFile::Ref map = file.addStream(
        "",
        "/CIDInit/ProcSet findresource begin\n12 dict begin\nbegincmap\n/CMapName/Emoji def\n/CMapType 2 "
        "def\n"
        "1 begincodespacerange\n<00><FF>\nendcodespacerange\n" +
            count + " beginbfchar\n" + letters +
            "endbfchar\nendcmap\nCMapName currentdict/CMap defineresource pop\nend\nend\n",
        PdfFile::Compression::none);
    return file.add(
        "<</Type/Font/Subtype/Type3/FontBBox[0 -140 1150 860]/FontMatrix[0.001 0 0 0.001 0 0]/FirstChar "
        "1/LastChar " +
        count + "/Widths" + numbers(std::vector<double>(drawings.size(), advance)) + "/CharProcs<<" +
        procedures + ">>/Encoding<</Type/Encoding/Differences[1" + names + "]>>/Resources<<>>/ToUnicode " +
        reference(map) + ">>");
}

} // namespace samples
