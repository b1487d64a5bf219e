// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

#include "scan/Paper.h"
#include "writer/Document.h"

#include <array>

namespace samples {
namespace {

constexpr double left = 74;
constexpr double right = 521;
constexpr double leading = 17;
constexpr double size = 11.5;

struct Faces
{
    Paper::Face regular{"NotoSerif"};
    Paper::Face bold{"NotoSerif-Bold"};
};

void printLetterhead(Paper& paper, const Faces& faces, std::string_view page)
{
    paper.text(left, 768, faces.bold, 19, "Riverside Water Company");
    paper.text(left, 750, faces.regular, 10, "25 Pumphouse Lane, Millbrook, VT 05079");
    paper.text(right, 768, faces.regular, 10, page, Alignment::right);
    paper.fill({left, 738, right - left, 1.6});
}

void printLines(Paper& paper, const Paper::Face& face, double y, const std::vector<std::string_view>& lines)
{
    for (const std::string_view line : lines) {
        paper.text(left, y, face, size, line);
        y -= leading;
    }
}

Paper firstPage(const Faces& faces)
{
    Paper paper(200, 0.011);
    printLetterhead(paper, faces, "Page 1 of 2");
    printLines(paper, faces.regular, 706, {"Mr. Thomas Okafor", "9 Orchard Street", "Millbrook, VT 05079"});
    paper.text(right, 706, faces.regular, size, "May 4, 2026", Alignment::right);
    paper.text(left, 628, faces.bold, 13, "Second notice: water statement for January to March");

    double y = 598;
    for (const std::string_view text :
         {"Dear Mr. Okafor,",
          "Our records show that the statement of April 2, 2026 has not been paid yet. If your payment is on "
          "its way, "
          "please accept our thanks and disregard this notice.",
          "Otherwise please remit the amount due of $184.35 so that it reaches us by May 25, 2026. A list of "
          "the "
          "charges is on the second page. You can pay by check, at our counter from Monday to Friday, or by "
          "telephone "
          "at (802) 555-0119.",
          "The reading of your meter in March was well above that of last year. A running toilet or a "
          "dripping tap can "
          "double the use of a household. If you suspect a leak, call us before you call a plumber: our "
          "inspector "
          "comes free of charge and usually within two days.",
          "If you find it difficult to pay the whole sum at once, we will gladly agree on three equal "
          "payments. Please "
          "return the lower part of page 2 with the box checked."})
        y = paper.paragraph(left, y, right - left, leading, faces.regular, size, text) - 9;
    printLines(paper, faces.regular, y - 6, {"Sincerely,"});
    printLines(paper, faces.regular, y - 62, {"Margaret Lindqvist", "Customer accounts"});
    return paper;
}

void printCharges(Paper& paper, const Faces& faces)
{
    const std::array<std::array<std::string_view, 3>, 6> charges = {{
        {"Water, 31 units", "$3.15", "$97.65"},
        {"Sewer, 31 units", "$1.60", "$49.60"},
        {"Base charge, three months", "$9.00", "$27.00"},
        {"Late fee", "", "$5.00"},
        {"State tax", "", "$5.10"},
        {"Total amount due", "", "$184.35"},
    }};
    double y = 640;
    paper.text(left, y, faces.bold, size, "Description");
    paper.text(400, y, faces.bold, size, "Rate", Alignment::right);
    paper.text(right, y, faces.bold, size, "Amount", Alignment::right);
    paper.fill({left, y - 8, right - left, 1});
    for (const auto& [description, rate, amount] : charges) {
        y -= 24;
        const bool last = description == charges.back().front();
        const Paper::Face& face = last ? faces.bold : faces.regular;
        if (last)
            paper.fill({left, y + 15, right - left, 1});
        paper.text(left, y, face, size, description);
        paper.text(400, y, face, size, rate, Alignment::right);
        paper.text(right, y, face, size, amount, Alignment::right);
    }
}

Paper secondPage(const Faces& faces)
{
    Paper paper(150, -0.008);
    printLetterhead(paper, faces, "Page 2 of 2");
    paper.text(left, 700, faces.regular, size, "Account Number: RW-448120");
    paper.text(right, 700, faces.regular, size, "Meter reading on March 31, 2026: 02784", Alignment::right);
    paper.text(left, 672, faces.bold, 13, "Charges");
    printCharges(paper, faces);

    double y = 440;
    paper.paragraph(
        left, y, right - left, leading, faces.regular, size,
        "One unit is one hundred cubic feet, or 748 gallons. Rates were set by the board of commissioners on "
        "November 18, 2025 and are printed on the back of every statement.");

    y = 330;
    for (int dash = 0; left + 9 * dash < right; ++dash)
        paper.fill({left + 9 * dash, y, 5, 0.8});
    paper.text(left, y - 28, faces.bold, 13, "Return this part with your payment");
    printLines(
        paper, faces.regular, y - 56,
        {"Customer: Thomas Okafor", "Account Number: RW-448120", "Payment due: 05/25/2026"});
    paper.text(right, y - 56, faces.bold, size, "Balance due: $184.35", Alignment::right);
    // An empty box to check.
    const Box box = {left, y - 132, 12, 12};
    paper.fill({box.x, box.y, box.width, 1});
    paper.fill({box.x, box.top() - 1, box.width, 1});
    paper.fill({box.x, box.y, 1, box.height});
    paper.fill({box.right() - 1, box.y, 1, box.height});
    paper.text(left + 22, y - 130, faces.regular, size, "I would like to pay in three equal payments.");
    paper.text(left, y - 178, faces.regular, size, "Signature:");
    paper.fill({left + 62, y - 180, 200, 0.8});
    return paper;
}

void addPicture(Document& document, const Paper& paper, int bitsPerPixel, const std::string& pixels)
{
    Page& page = document.addPage(a4);
    page.objects.emplace_back(
        "Scan", document.file().addStream(
                    "/Type/XObject/Subtype/Image/ColorSpace/DeviceGray/BitsPerComponent " +
                        std::to_string(bitsPerPixel) + "/Width " + std::to_string(paper.pixelWidth()) +
                        "/Height " + std::to_string(paper.pixelHeight()),
                    pixels, PdfFile::Compression::deflate));
    page.canvas.raw("q " + number(a4.width) + " 0 0 " + number(a4.height) + " 0 0 cm /Scan Do Q");
}

} // namespace

std::string makeScan()
{
    Document document({"Scan of a water bill", "Scanner", "en-US"});
    const Faces faces;
    const Paper first = firstPage(faces);
    addPicture(document, first, 1, first.scannedBlackAndWhite(20260504));
    const Paper second = secondPage(faces);
    addPicture(document, second, 4, second.scannedGrey(20260505));
    return document.finish();
}

} // namespace samples
