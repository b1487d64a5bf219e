// SPDX-License-Identifier: AGPL-3.0-or-later
#include "writer/FormFields.h"

#include <algorithm>

namespace samples {
namespace {

// Field flags, by their bit in the standard.
constexpr int requiredFlag = 1 << 1;
constexpr int noToggleToOffFlag = 1 << 14;
constexpr int radioFlag = 1 << 15;
constexpr int multilineFlag = 1 << 12;
constexpr int passwordFlag = 1 << 13;
constexpr int comboFlag = 1 << 17;
constexpr int editFlag = 1 << 18;
constexpr int multiSelectFlag = 1 << 21;
constexpr int combFlag = 1 << 24;

constexpr double fontSize = 10;
constexpr double inset = 4;
constexpr double listLeading = 13;

constexpr std::string_view defaultAppearance = "/DA(/Helv 10 Tf 0.12 0.12 0.14 rg)";
constexpr std::string_view textOperators = "/Helv 10 Tf 0.12 0.12 0.14 rg ";
constexpr std::string_view fieldColours = "/MK<</BC[0.66 0.69 0.74]/BG[0.97 0.98 0.99]>>/BS<</W 0.75/S/S>>";

/// The field's background and border in a space whose origin is its lower left corner.
std::string frame(const Box& box)
{
    Canvas canvas;
    const Box inner = {0.375, 0.375, box.width - 0.75, box.height - 0.75};
    canvas.fill(inner, {0.97, 0.98, 0.99});
    canvas.stroke(inner, 0.75, {0.66, 0.69, 0.74});
    return canvas.content();
}

std::string showText(double x, double y, std::string_view text)
{
    return "BT " + std::string(textOperators) + number(x) + " " + number(y) + " Td " + literal(text) +
           " Tj ET\n";
}

/// What the field shows as its value, which viewers replace when the value changes.
std::string variableText(const Box& box, const std::string& content)
{
    return "/Tx BMC\nq " + number(1) + " 1 " + number(box.width - 2) + " " + number(box.height - 2) +
           " re W n\n" + content + "Q\nEMC\n";
}

double middleBaseline(const Box& box)
{
    // A capital's height is about 0.72 of the font size.
    return (box.height - fontSize * 0.72) / 2;
}

std::string combDividers(const Box& box, int boxes)
{
    Canvas canvas;
    for (int i = 1; i < boxes; ++i) {
        const double x = box.width * i / boxes;
        canvas.line(x, 0.75, x, box.height - 0.75, 0.5, {0.66, 0.69, 0.74});
    }
    return canvas.content();
}

std::string identityEntries(const FormFields::Identity& identity, int flags)
{
    if (identity.required)
        flags |= requiredFlag;
    std::string entries = "/T" + literal(identity.name) + "/TU" + textString(identity.tooltip);
    if (flags != 0)
        entries += "/Ff " + std::to_string(flags);
    return entries;
}

std::string choiceList(const std::vector<std::string_view>& choices)
{
    std::string list = "[";
    for (const std::string_view choice : choices)
        list += textString(choice);
    return list + "]";
}

std::string circleAppearance(double size, bool on)
{
    Canvas canvas;
    const double middle = size / 2;
    canvas.circle(middle, middle, middle - 0.4, {0.66, 0.69, 0.74});
    canvas.circle(middle, middle, middle - 1.15, {0.97, 0.98, 0.99});
    if (on)
        canvas.circle(middle, middle, middle * 0.48, {0.12, 0.12, 0.14});
    return canvas.content();
}

std::string checkAppearance(const Box& box, bool on)
{
    std::string content = frame(box);
    if (on) {
        Canvas canvas;
        canvas.polyline(
            {box.width * 0.22, box.height * 0.5, box.width * 0.42, box.height * 0.27, box.width * 0.78,
             box.height * 0.76},
            1.6, {0.12, 0.12, 0.14});
        content += "1 J 1 j\n" + canvas.content();
    }
    return content;
}

} // namespace

FormFields::FormFields(Document& document)
    : m_document(document)
    , m_textFont(
          document.file().add("<</Type/Font/Subtype/Type1/BaseFont/Helvetica/Encoding/WinAnsiEncoding>>"))
    , m_markFont(document.file().add("<</Type/Font/Subtype/Type1/BaseFont/ZapfDingbats>>"))
{}

PdfFile::Ref FormFields::addAppearance(const Box& box, const std::string& content)
{
    return m_document.file().addStream(
        "/Type/XObject/Subtype/Form/BBox" + numbers({0, 0, box.width, box.height}) +
            "/Resources<</Font<</Helv " + reference(m_textFont) + "/ZaDb " + reference(m_markFont) + ">>>>",
        content, PdfFile::Compression::none);
}

void FormFields::addField(
    Page& page, const std::string& entries, const Box& box, const std::string& appearance)
{
    const PdfFile::Ref field = m_document.file().add(
        "<</Type/Annot/Subtype/Widget/F 4/P " + reference(page.ref) + "/Rect" +
        numbers({box.x, box.y, box.right(), box.top()}) + entries + "/AP<</N " + appearance + ">>>>");
    m_fields.push_back(field);
    page.annotations.push_back(field);
}

void FormFields::addText(Page& page, const Box& box, const Identity& identity, const TextOptions& options)
{
    const int flags = (options.multiline ? multilineFlag : 0) | (options.password ? passwordFlag : 0) |
                      (options.combBoxes > 0 ? combFlag : 0);
    const int limit = options.combBoxes > 0 ? options.combBoxes : options.maximumLength;
    std::string entries = "/FT/Tx" + identityEntries(identity, flags) + std::string(fieldColours) +
                          std::string(defaultAppearance) + "/V" + textString(options.value);
    if (limit > 0)
        entries += "/MaxLen " + std::to_string(limit);

    std::string content;
    if (!options.value.empty()) {
        const double y = options.multiline ? box.height - inset - fontSize * 0.8 : middleBaseline(box);
        content = showText(inset, y, StandardFont(Typeface::sans).encode(options.value));
    }
    const std::string dividers = combDividers(box, options.combBoxes);
    addField(
        page, entries, box,
        reference(addAppearance(box, frame(box) + dividers + variableText(box, content))));
}

void FormFields::addCheckBox(Page& page, const Box& box, const Identity& identity, bool checked)
{
    const std::string state = checked ? "/Yes" : "/Off";
    const std::string appearance = "<</Yes " + reference(addAppearance(box, checkAppearance(box, true))) +
                                   "/Off " + reference(addAppearance(box, checkAppearance(box, false))) +
                                   ">>";
    addField(
        page,
        "/FT/Btn" + identityEntries(identity, 0) + "/DA(/ZaDb 0 Tf 0.12 0.12 0.14 rg)/V" + state + "/AS" +
            state + "/MK<</BC[0.66 0.69 0.74]/BG[0.97 0.98 0.99]/CA(4)>>",
        box, appearance);
}

void FormFields::addRadioButtons(
    Page& page, const Identity& identity, const std::vector<RadioButton>& buttons, std::string_view selected)
{
    PdfFile& file = m_document.file();
    const PdfFile::Ref group = file.reserve();
    std::vector<PdfFile::Ref> kids;
    for (const auto& [box, state] : buttons) {
        const std::string name = "/" + std::string(state);
        const std::string appearance =
            "<<" + name + " " + reference(addAppearance(box, circleAppearance(box.width, true))) + "/Off " +
            reference(addAppearance(box, circleAppearance(box.width, false))) + ">>";
        kids.push_back(file.add(
            "<</Type/Annot/Subtype/Widget/F 4/P " + reference(page.ref) + "/Parent " + reference(group) +
            "/Rect" + numbers({box.x, box.y, box.right(), box.top()}) + "/AS" +
            (state == selected ? name : "/Off") +
            "/MK<</BC[0.66 0.69 0.74]/BG[0.97 0.98 0.99]/CA(l)>>/AP<</N " + appearance + ">>>>"));
    }
    std::string object = "<</FT/Btn" + identityEntries(identity, radioFlag | noToggleToOffFlag) +
                         "/DA(/ZaDb 0 Tf 0.12 0.12 0.14 rg)/Kids" + references(kids) + "/V/";
    object += selected.empty() ? "Off" : selected;
    file.set(group, object + ">>");
    m_fields.push_back(group);
    page.annotations.insert(page.annotations.end(), kids.begin(), kids.end());
}

void FormFields::addComboBox(
    Page& page, const Box& box, const Identity& identity, const std::vector<std::string_view>& choices,
    std::string_view value, bool editable)
{
    const std::string content =
        value.empty() ? "" : showText(inset, middleBaseline(box), StandardFont(Typeface::sans).encode(value));
    addField(
        page,
        "/FT/Ch" + identityEntries(identity, comboFlag | (editable ? editFlag : 0)) +
            std::string(fieldColours) + std::string(defaultAppearance) + "/Opt" + choiceList(choices) + "/V" +
            textString(value),
        box, reference(addAppearance(box, frame(box) + variableText(box, content))));
}

void FormFields::addListBox(
    Page& page, const Box& box, const Identity& identity, const std::vector<std::string_view>& choices,
    const std::vector<std::size_t>& selected)
{
    std::string content;
    std::string indices = "[";
    std::string values = "[";
    for (std::size_t i = 0; i < choices.size(); ++i) {
        const double y = box.height - 2 - listLeading * static_cast<double>(i + 1);
        if (std::find(selected.begin(), selected.end(), i) != selected.end()) {
            Canvas canvas;
            canvas.fill({1, y, box.width - 2, listLeading}, {0.6, 0.756, 0.855});
            content += canvas.content();
            indices += std::to_string(i) + " ";
            values += textString(choices[i]);
        }
        content += showText(inset, y + 3.5, StandardFont(Typeface::sans).encode(choices[i]));
    }
    addField(
        page,
        "/FT/Ch" + identityEntries(identity, multiSelectFlag) + std::string(fieldColours) +
            std::string(defaultAppearance) + "/Opt" + choiceList(choices) + "/V" + values + "]/I" + indices +
            "]",
        box, reference(addAppearance(box, frame(box) + variableText(box, content))));
}

void FormFields::addSignature(Page& page, const Box& box, const Identity& identity)
{
    addField(
        page, "/FT/Sig" + identityEntries(identity, 0) + std::string(fieldColours), box,
        reference(addAppearance(box, frame(box))));
}

void FormFields::finish()
{
    const PdfFile::Ref form = m_document.file().add(
        "<</Fields" + references(m_fields) + "/DR<</Font<</Helv " + reference(m_textFont) + "/ZaDb " +
        reference(m_markFont) + ">>>>" + std::string(defaultAppearance) + ">>");
    m_document.addToCatalog("/AcroForm " + reference(form));
}

} // namespace samples
