// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

#include "writer/Document.h"

#include <array>
#include <cstdlib>
#include <utility>

namespace samples {
namespace {

constexpr double left = 54;
constexpr double right = 558;

const Colour ink = colour(0x22302A);
const Colour quiet = colour(0x66736C);
const Colour accent = colour(0x2F6B4F);
const Colour tint = colour(0xEEF4F0);
const Colour hairline = colour(0xC9D4CD);

struct Item
{
    std::string_view description;
    std::string_view detail;
    int quantity;
    std::string_view unit;
    /// Cents for one unit.
    int price;
};

constexpr std::array<Item, 6> items = {{
    {"Spring bed preparation", "Edging, weeding and compost for four raised beds", 12, "hr", 6500},
    {"Japanese maple, 6 ft", "Acer palmatum, balled and burlapped, planted", 2, "ea", 31850},
    {"Native perennial mix", "Quart pots: coneflower, bee balm, little bluestem", 48, "ea", 975},
    {"Drip irrigation line", "Half-inch tubing with emitters every 12 inches", 180, "ft", 215},
    {"Cedar mulch, delivered", "Spread to a depth of three inches", 9, "yd", 5800},
    {"Seasonal maintenance visit", "March 2026, first and third week", 2, "ea", 14500},
}};

constexpr int taxPerMille = 83;
constexpr int deposit = 75000;

std::string dollars(int cents)
{
    const std::string units = std::to_string(std::abs(cents) / 100);
    std::string result = cents < 0 ? "-$" : "$";
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (i > 0 && (units.size() - i) % 3 == 0)
            result += ',';
        result += units[i];
    }
    return result + "." + std::to_string(100 + std::abs(cents) % 100).substr(1);
}

int subtotal()
{
    int sum = 0;
    for (const Item& item : items)
        sum += item.quantity * item.price;
    return sum;
}

int tax()
{
    return (subtotal() * taxPerMille + 500) / 1000;
}

int balance()
{
    return subtotal() + tax() - deposit;
}

class Invoice
{
public:
    Invoice()
        : m_document({"Invoice INV-204817", "Larkspur Garden Works", "en-US"})
        , m_canvas(m_document.addPage(letter).canvas)
    {}

    std::string make()
    {
        drawHead();
        drawParties();
        const double end = drawItems(526);
        drawTotals(end - 24);
        drawPaymentTerms();
        drawSlip();
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

    void drawHead()
    {
        // A flower of five petals.
        for (const auto& [x, y] : std::array<std::pair<double, double>, 5>{
                 {{0, 8.5}, {8.1, 2.6}, {5, -6.9}, {-5, -6.9}, {-8.1, 2.6}}})
            m_canvas.circle(left + 17 + x, 722 + y, 6.4, accent);
        m_canvas.circle(left + 17, 722, 4.2, colour(0xF2C744));
        m_canvas.text(left + 44, 724, bold(17), "Larkspur Garden Works");
        m_canvas.text(left + 44, 709, plain(9, quiet), "Design, planting and care since 1998");
        m_canvas.text(right, 716, bold(26, accent), "INVOICE", Alignment::right);
        m_canvas.line(left, 690, right, 690, 1.2, accent);
    }

    void drawLines(double x, double y, const std::vector<std::string_view>& lines)
    {
        for (const std::string_view line : lines) {
            m_canvas.text(x, y, plain(9.5), line);
            y -= 13.5;
        }
    }

    void drawParties()
    {
        m_canvas.text(left, 666, bold(8, quiet), "FROM");
        drawLines(
            left, 651,
            {"Larkspur Garden Works", "1420 Harbor View Road", "Astoria, OR 97103", "(503) 555-0142",
             "accounts@larkspur.example"});
        m_canvas.text(left + 168, 666, bold(8, quiet), "BILL TO");
        drawLines(
            left + 168, 651,
            {"Eleanor Whitcombe", "Whitcombe House Bakery", "88 Commercial Street", "Astoria, OR 97103",
             "eleanor@whitcombe.example"});

        const Box box = {386, 574, right - 386, 100};
        m_canvas.fillRounded(box, 5, tint);
        const std::array<std::pair<std::string_view, std::string_view>, 5> facts = {{
            {"Invoice Number:", "INV-204817"},
            {"Invoice Date:", "March 20, 2026"},
            {"Account Number:", "WH-30561"},
            {"Terms:", "Net 30 days"},
            {"Due Date:", "04/19/2026"},
        }};
        double y = box.top() - 19;
        for (const auto& [name, value] : facts) {
            const bool last = name == facts.back().first;
            m_canvas.text(box.x + 12, y, last ? bold(9.5, accent) : plain(9.5, quiet), name);
            m_canvas.text(box.right() - 12, y, last ? bold(9.5, accent) : bold(9.5), value, Alignment::right);
            y -= 17;
        }
    }

    double drawItems(double y)
    {
        constexpr double quantityEnd = 386;
        constexpr double priceEnd = 470;
        const Box head = {left, y, right - left, 22};
        m_canvas.fill(head, accent);
        const TextStyle title = bold(8.5, colour(0xFFFFFF));
        m_canvas.text(left + 10, y + 7.5, title, "Description");
        m_canvas.text(quantityEnd, y + 7.5, title, "Quantity", Alignment::right);
        m_canvas.text(priceEnd, y + 7.5, title, "Unit price", Alignment::right);
        m_canvas.text(right - 10, y + 7.5, title, "Amount", Alignment::right);
        for (const Item& item : items) {
            m_canvas.text(left + 10, y - 15, bold(9.5), item.description);
            m_canvas.text(left + 10, y - 26.5, plain(8, quiet), item.detail);
            const std::string quantity = std::to_string(item.quantity) + " " + std::string(item.unit);
            m_canvas.text(quantityEnd, y - 15, plain(9.5), quantity, Alignment::right);
            m_canvas.text(priceEnd, y - 15, plain(9.5), dollars(item.price), Alignment::right);
            m_canvas.text(
                right - 10, y - 15, plain(9.5), dollars(item.quantity * item.price), Alignment::right);
            y -= 34;
            m_canvas.line(left, y, right, y, 0.5, hairline);
        }
        return y;
    }

    void drawTotals(double y)
    {
        const std::array<std::pair<std::string_view, std::string>, 4> sums = {{
            {"Subtotal", dollars(subtotal())},
            {"Sales tax (8.3%)", dollars(tax())},
            {"Total amount", dollars(subtotal() + tax())},
            {"Deposit received 02/27/2026", dollars(-deposit)},
        }};
        for (const auto& [name, value] : sums) {
            m_canvas.text(340, y, plain(9.5, quiet), name);
            m_canvas.text(right - 10, y, plain(9.5), value, Alignment::right);
            y -= 16;
        }
        const Box box = {330, y - 19, right - 330, 24};
        m_canvas.fillRounded(box, 4, accent);
        const TextStyle style = bold(11.5, colour(0xFFFFFF));
        m_canvas.text(340, y - 11, style, "Amount due");
        m_canvas.text(right - 10, y - 11, style, dollars(balance()), Alignment::right);
    }

    void drawPaymentTerms()
    {
        m_canvas.text(left, 298, bold(8, quiet), "HOW TO PAY");
        m_canvas.paragraph(
            left, 283, 240, 13, plain(9),
            "Please remit the balance due by 04/19/2026 by bank transfer or by check to Larkspur Garden "
            "Works. "
            "Quote the invoice number with your payment. A charge of 1.5% per month applies to late "
            "payments.");
        m_canvas.text(left, 214, bold(8, quiet), "QUESTIONS");
        m_canvas.paragraph(
            left, 199, 240, 13, plain(9), "Call (503) 555-0142 or write to accounts@larkspur.example.");
    }

    void drawSlip()
    {
        m_canvas.raw("[3 3] 0 d");
        m_canvas.line(left, 138, right, 138, 0.6, quiet);
        m_canvas.raw("[] 0 d");
        m_canvas.text(left, 124, plain(7.5, quiet), "Detach here and return with your payment");
        const std::array<std::pair<std::string_view, std::string>, 4> facts = {{
            {"Customer", "Whitcombe House Bakery"},
            {"Invoice", "INV-204817"},
            {"Payment due", "04/19/2026"},
            {"Balance due", dollars(balance())},
        }};
        double x = left;
        for (const auto& [name, value] : facts) {
            m_canvas.text(x, 92, plain(8, quiet), name);
            m_canvas.text(x, 77, bold(10.5), value);
            x += x == left ? 170 : 112;
        }
        m_canvas.line(left, 62, right, 62, 0.5, hairline);
        m_canvas.text(
            (left + right) / 2, 46, plain(8, quiet),
            "Larkspur Garden Works - 1420 Harbor View Road - Astoria, OR 97103", Alignment::centre);
    }

    Document m_document;
    Canvas& m_canvas;
};

} // namespace

std::string makeInvoice()
{
    return Invoice().make();
}

} // namespace samples
