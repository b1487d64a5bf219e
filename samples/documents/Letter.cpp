// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

#include "writer/Document.h"

#include <array>

namespace samples {
namespace {

constexpr double left = 85;
constexpr double width = 425;
constexpr double leading = 15.5;

const Colour ink = colour(0x1F1F24);
const Colour quiet = colour(0x6B6B76);
const Colour accent = colour(0x7A2E3A);

constexpr std::array<std::string_view, 5> body = {
    "Thank you for your visit to our workshop last Thursday, and for the care with which you carried your "
    "grandfather’s violin across half the country. I have now had the time to look at the instrument from "
    "the "
    "inside, and I am glad to say that it is in a far better state than its looks suggest.",
    "The label is genuine. The varnish on the table has suffered from a coat of furniture polish, most "
    "likely "
    "in the fifties, and it will clean up well. The crack below the left f-hole is old, closed and stable. "
    "What "
    "does need attention is the bass bar, which has come loose over the length of a hand, and the neck, "
    "which "
    "has sunk by two millimetres and makes the instrument difficult to play.",
    "I suggest that we reset the neck, refit the bass bar and fit a new bridge, and that we leave the scroll "
    "exactly as it is: the wear there is part of its story. The work would take about six weeks. I would not "
    "begin before you have seen the enclosed photographs and had an opportunity to ask whatever you like.",
    "You also asked what the violin is worth. I would rather not put a figure on paper before the repair is "
    "finished; but please do raise the sum for which it is insured, and do not leave it in a car.",
    "I shall be at the bench every day but Monday and would be delighted to hear from you.",
};

void drawLetterhead(Document& document, Page& page)
{
    Canvas& canvas = page.canvas;
    const TextStyle name = {document.standardFont(Typeface::serif), 21, accent};
    const TextStyle small = {document.standardFont(Typeface::serifItalic), 10, quiet};
    canvas.text(a4.width / 2, 771, name, "Marguerite Olsen & Daughter", Alignment::centre);
    canvas.text(a4.width / 2, 754, small, "Violin makers and restorers", Alignment::centre);
    canvas.line(left, 742, left + width, 742, 0.6, accent);
    canvas.line(left, 739.5, left + width, 739.5, 0.3, accent);

    canvas.line(left, 62, left + width, 62, 0.3, accent);
    canvas.text(
        a4.width / 2, 48, small,
        "7 Cooper’s Lane, Whitby YO21 3PU  ·  01947 555 018  ·  bench@olsen-violins.example",
        Alignment::centre);
}

/// The maker's name as a pen would write it.
void drawSignature(Canvas& canvas, double x, double y)
{
    canvas.raw(
        "q 1 J 1 j 0.12 0.17 0.42 RG 1.1 w 1 0 0 1 " + number(x) + " " + number(y) +
        " cm 0 4 m 6 26 10 34 13 30 c 15 26 11 10 12 4 c 16 18 24 34 27 29 c 29 25 24 8 27 4 c "
        "30 1 34 14 38 14 c 41 14 37 3 34 7 c 31 12 41 3 43 5 c 45 8 44 13 46 13 c 48 12 50 16 53 13 c "
        "S 62 16 m 58 28 76 32 82 20 c 86 8 70 -2 64 8 c 60 16 72 26 90 22 c S 94 6 m 98 28 102 34 103 28 c "
        "103 18 96 4 100 4 c 106 5 108 14 112 13 c 115 11 106 2 113 4 c 120 6 120 14 126 12 c 124 4 130 2 "
        "138 10 c "
        "150 16 165 12 178 15 c S Q");
}

} // namespace

std::string makeLetter()
{
    Document document({"Letter to Mr Hargreaves", "Marguerite Olsen", "en-GB"});
    Page& page = document.addPage(a4);
    Canvas& canvas = page.canvas;
    const TextStyle text = {document.standardFont(Typeface::serif), 11.5, ink};
    const TextStyle strong = {document.standardFont(Typeface::serifBold), 11.5, ink};

    drawLetterhead(document, page);
    double y = canvas.paragraph(
        left, 702, width, leading, text, "Mr Jonathan Hargreaves\n14 Station Crescent\nPenrith CA11 7JQ");
    canvas.text(left + width, y - 6, text, "9 February 2026", Alignment::right);
    y = canvas.paragraph(left, y - 36, width, leading, text, "Dear Mr Hargreaves,");
    canvas.text(left, y - 6, strong, "Subject: Your violin, bench number 2271");
    y -= 30;
    for (const std::string_view paragraph : body)
        y = canvas.paragraph(left, y, width, leading, text, paragraph, Alignment::justified) - 7;
    canvas.text(left, y - 2, text, "With kind regards,");
    drawSignature(canvas, left, y - 50);
    y = canvas.paragraph(left, y - 68, width, leading, text, "Marguerite Olsen");
    canvas.text(left, y - 8, {text.font, 10, quiet}, "Enclosed: six photographs        cc: Ingrid Olsen");
    return document.finish();
}

} // namespace samples
