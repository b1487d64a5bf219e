// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

#include "writer/Document.h"
#include "writer/FormFields.h"

namespace samples {
namespace {

constexpr double left = 54;
constexpr double right = 558;
constexpr double gap = 16;
constexpr double half = (right - left - gap) / 2;
constexpr double secondColumn = left + half + gap;
constexpr double fieldHeight = 21;

const Colour ink = colour(0x1F2430);
const Colour quiet = colour(0x5D6675);
const Colour accent = colour(0x27508F);
const Colour band = colour(0xE9EEF6);

class ApplicationForm
{
public:
    ApplicationForm()
        : m_document({"Application for a garden plot", "Larkspur Parks Department", "en-US"})
        , m_page(m_document.addPage(letter))
        , m_fields(m_document)
    {}

    std::string make()
    {
        drawHead();
        drawApplicant();
        drawPlot();
        drawWishes();
        drawSignature();
        drawFoot();
        m_fields.finish();
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
        Canvas& canvas = m_page.canvas;
        canvas.fill({left, 744, right - left, 3}, accent);
        canvas.text(left, 716, bold(19), "Application for a Garden Plot");
        canvas.text(left, 700, plain(10, quiet), "Larkspur Parks Department, season 2026");
        canvas.text(right, 716, bold(9.5), "Form number CG-12", Alignment::right);
        canvas.text(right, 700, plain(9, quiet), "Page 1 of 1", Alignment::right);
        canvas.paragraph(
            left, 678, right - left, 13, plain(9.5),
            "Please complete all sections and return this form by March 1, 2026. Fields marked with an "
            "asterisk are "
            "required. One application per household; plots are allotted in the order in which forms "
            "arrive.");
    }

    void section(double y, std::string_view title)
    {
        m_page.canvas.fill({left, y - 6, right - left, 19}, band);
        m_page.canvas.text(left + 8, y, bold(10, accent), title);
    }

    /// Draws the label above the place of a field whose top is given, and returns that place.
    Box labelled(double x, double top, double width, std::string_view label, double height = fieldHeight)
    {
        m_page.canvas.text(x, top - 8, plain(8.5, quiet), label);
        return {x, top - 13 - height, width, height};
    }

    void drawApplicant()
    {
        section(640, "1. Applicant");
        m_fields.addText(
            m_page, labelled(left, 626, half, "Full name *"), {"applicant.name", "Full name", true}, {});
        m_fields.addText(
            m_page, labelled(secondColumn, 626, 110, "Date of birth *"),
            {"applicant.birth", "Date of birth, month/day/year", true}, {});
        m_fields.addText(
            m_page, labelled(secondColumn + 126, 626, half - 126, "Telephone"),
            {"applicant.phone", "Telephone", false}, {});
        m_fields.addText(
            m_page, labelled(left, 586, half, "Street address *"),
            {"applicant.street", "Street address", true}, {});
        m_fields.addText(
            m_page, labelled(secondColumn, 586, 110, "City"), {"applicant.city", "City", false},
            {"Larkspur"});
        m_fields.addText(
            m_page, labelled(secondColumn + 126, 586, half - 126, "ZIP code"),
            {"applicant.zip", "ZIP code", false}, {.value = {}, .combBoxes = 5});
        m_fields.addText(
            m_page, labelled(left, 546, half, "E-mail"), {"applicant.email", "E-mail address", false}, {});
        m_fields.addText(
            m_page, labelled(secondColumn, 546, 110, "Choose a PIN for the gate"),
            {"applicant.pin", "Four to six digits for the gate", false},
            {.value = {}, .password = true, .maximumLength = 6});
    }

    void drawPlot()
    {
        section(488, "2. Plot");
        Canvas& canvas = m_page.canvas;
        canvas.text(left, 466, plain(8.5, quiet), "Size (check one) *");
        std::vector<FormFields::RadioButton> buttons;
        double x = left;
        for (const auto& [state, label] :
             {std::pair("Small", "Small, 100 sq ft"), std::pair("Medium", "Medium, 200 sq ft"),
              std::pair("Large", "Large, 400 sq ft")}) {
            buttons.push_back({{x, 445, 12, 12}, state});
            canvas.text(x + 17, 447.5, plain(9.5), label);
            x += widthOf(plain(9.5), label) + 42;
        }
        m_fields.addRadioButtons(m_page, {"plot.size", "Size of the plot", true}, buttons, "Medium");

        m_fields.addComboBox(
            m_page, labelled(left, 434, half, "Preferred garden"), {"plot.garden", "Preferred garden", false},
            {"No preference", "Cannery Hill", "Old Mill Pond", "Riverside", "School Street"}, "No preference",
            false);
        m_fields.addComboBox(
            m_page,
            labelled(secondColumn, 434, half, "How did you hear of us? (choose, or enter your own answer)"),
            {"plot.source", "How did you hear of us?", false}, {"A neighbor", "Newspaper", "Town website"},
            "", true);
    }

    void drawWishes()
    {
        section(376, "3. Your garden");
        m_fields.addListBox(
            m_page, labelled(left, 362, 160, "What will you grow?", 82),
            {"garden.crops", "What will you grow? Several can be selected.", false},
            {"Vegetables", "Herbs", "Berries", "Cut flowers", "Native plants", "Something else"}, {0, 3});
        m_fields.addText(
            m_page,
            labelled(left + 176, 362, right - left - 176, "Tell us about your plans and experience", 82),
            {"garden.plans", "Your plans and experience", false}, {.value = {}, .multiline = true});

        double y = 241;
        for (const auto& [name, label, checked] :
             {std::tuple("garden.tools", "I would like to borrow tools from the shed", false),
              std::tuple("garden.compost", "I will take my turn at the compost heap", true),
              std::tuple("garden.waiting", "If no plot is free, put me on the waiting list", true)}) {
            m_fields.addCheckBox(m_page, {left, y, 12, 12}, {name, label, false}, checked);
            m_page.canvas.text(left + 19, y + 2.5, plain(9.5), label);
            y -= 18;
        }
    }

    void drawSignature()
    {
        section(176, "4. Signature required");
        m_page.canvas.paragraph(
            left, 157, right - left, 12.5, plain(9),
            "I have read the garden rules and agree to keep my plot tended from April to October. I "
            "understand that "
            "a plot that is left untended for thirty days may be given to another applicant.");
        m_fields.addSignature(
            m_page, labelled(left, 134, half + 60, "Signature of the applicant *", 40),
            {"signature", "Signature of the applicant", true});
        m_fields.addText(
            m_page, labelled(left + half + 76, 115, right - left - half - 76, "Date *"),
            {"signature.date", "Date", true}, {});
    }

    void drawFoot()
    {
        Canvas& canvas = m_page.canvas;
        canvas.line(left, 64, right, 64, 0.5, colour(0xB9C2D0));
        canvas.text(
            left, 51, plain(8, quiet),
            "Mail to: Larkspur Parks Department, 300 Mill Street, Larkspur, OR 97146, or hand in at the "
            "front desk.");
        canvas.text(
            left, 40, plain(8, quiet),
            "Questions? Call (503) 555-0177 or write to gardens@larkspur.example.");
    }

    Document m_document;
    Page& m_page;
    FormFields m_fields;
};

} // namespace

std::string makeForm()
{
    return ApplicationForm().make();
}

} // namespace samples
