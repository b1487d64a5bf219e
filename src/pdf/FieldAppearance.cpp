// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FieldAppearance.h"

#include "pdf/ContentStream.h"
#include "pdf/FieldLayout.h"
#include "pdf/FieldTree.h"
#include "pdf/GraftedPage.h"
#include "pdf/SystemText.h"

#include <algorithm>
#include <cmath>

namespace pdf {

const char* const symbolFontName = "ZaDb";
const char* const defaultFontName = "Helv";
const char* const textPagePath = "AP/N/Resources/XObject/Text";

namespace {

using fields::FieldRecord;

/// The symbols that mark buttons: their codes, and in parts of the font size how wide they are.
struct Symbol
{
    char code;
    double width;
};
constexpr Symbol symbols[] = {
    {'4', 0.846}, // check mark
    {'l', 0.791}, // disc
    {'8', 0.760}, // cross
    {'u', 0.788}, // diamond
    {'n', 0.761}, // square
    {'H', 0.816}, // star
};
// All of them are this high, from the baseline.
constexpr double symbolHeight = 0.705;

// Of the button's inner size; the disc of a radio button is smaller than a mark that fills its box.
constexpr double markPart = 0.9;
constexpr double discPart = 0.7;

QSizeF sizeOf(const PDFFormField& field)
{
    const QSizeF size = field.bounds.size();
    return field.rotation % 180 == 0 ? size : size.transposed();
}

FieldLayout layOut(const FieldRecord& record, QSizeF size, const FieldFont& font)
{
    const PDFFormField& field = record.field;
    const double inset = borderInset(field);
    if (field.kind != FormFieldKind::listBox)
        return layOutText(field, size, inset, font);
    return layOutOptions(field, size, inset, topOption(field, size, inset), font);
}

void addEncodedText(
    ContentStream& content, const FieldRecord& record, const FieldLayout& layout, const EncodedFont& font)
{
    content.add({}, "BT");
    content.addRaw(record.style.colourOperator);
    content.addRaw(contentName(record.style.font) + ' ' + contentNumber(layout.fontSize) + " Tf");
    for (const TextAt& line : layout.lines) {
        content.add({1, 0, 0, 1, line.baseline.x(), line.baseline.y()}, "Tm");
        content.add(font.encode(line.text), "Tj");
    }
    content.add({}, "ET");
}

QSizeF roundedUp(QSizeF size)
{
    return {std::max(1.0, std::ceil(size.width())), std::max(1.0, std::ceil(size.height()))};
}

fz_matrix turned(const FieldAppearance& appearance)
{
    const auto width = static_cast<float>(appearance.size.width());
    const auto height = static_cast<float>(appearance.size.height());
    switch (appearance.rotation) {
    case 90:
        return {0, 1, -1, 0, height, 0};
    case 180:
        return {-1, 0, 0, -1, width, height};
    case 270:
        return {0, -1, 1, 0, 0, width};
    default:
        return fz_identity;
    }
}

void addResources(
    fz_context* ctx, pdf_document* document, pdf_obj* widget, const FieldAppearance& appearance,
    pdf_obj* resources)
{
    if (!appearance.font.isEmpty()) {
        pdf_obj* fonts = pdf_dict_put_dict(ctx, resources, PDF_NAME(Font), 1);
        const char* name = appearance.font.constData();
        pdf_dict_puts(ctx, fonts, name, fields::sharedFont(ctx, document, widget, name));
    }
    if (appearance.backgroundOpacity < 1.0) {
        pdf_obj* states = pdf_dict_put_dict(ctx, resources, PDF_NAME(ExtGState), 1);
        pdf_obj* state = pdf_dict_puts_dict(ctx, states, "Background", 1);
        pdf_dict_put_real(ctx, state, PDF_NAME(ca), appearance.backgroundOpacity);
    }
    if (appearance.showsPage()) {
        const QSizeF size = roundedUp(appearance.size);
        const fz_rect box = {0, 0, static_cast<float>(size.width()), static_cast<float>(size.height())};
        pdf_obj* objects = pdf_dict_put_dict(ctx, resources, PDF_NAME(XObject), 1);
        pdf_dict_puts_drop(ctx, objects, "Text", graftPage(ctx, document, appearance.textPage.file, box));
    }
}

} // namespace

FieldAppearance composeValue(const FieldRecord& record, const EncodedFont& font)
{
    FieldAppearance result;
    result.size = sizeOf(record.field);
    result.rotation = record.field.rotation;
    result.backgroundOpacity = record.frame.backgroundOpacity;
    FieldLayout layout = layOut(record, result.size, font);
    const auto canShow = [&](const TextAt& line) { return font.canShow(line.text); };
    const bool isEncoded =
        !SystemFont::isAvailable() || std::all_of(layout.lines.begin(), layout.lines.end(), canShow);

    ContentStream content;
    drawFrame(content, record.frame, result.size, record.field.isComb ? record.field.maximumLength : 1);
    content.addRaw("/Tx BMC");
    content.add({}, "q");
    content.addRectangle(layout.clip, "W n");
    if (isEncoded) {
        result.font = record.style.font;
    } else {
        const SystemFont systemFont(record.field.fontName);
        layout = layOut(record, result.size, systemFont);
        result.textPage =
            systemFont.draw(layout.lines, layout.fontSize, record.style.colour, roundedUp(result.size));
    }
    content.add({selectedOptionRed, selectedOptionGreen, selectedOptionBlue}, "rg");
    for (const QRectF& highlight : layout.highlights)
        content.addRectangle(highlight, "f");
    if (isEncoded)
        addEncodedText(content, record, layout, font);
    else
        content.addRaw("/Text Do");
    content.add({}, "Q");
    content.addRaw("EMC");
    result.content = content.bytes();
    return result;
}

FieldAppearance composeButton(const FieldRecord& record, bool isOn)
{
    const PDFFormField& field = record.field;
    FieldAppearance result;
    result.size = sizeOf(field);
    result.rotation = field.rotation;
    const bool isRadio = field.kind == FormFieldKind::radioButton;
    const char code = record.mark.isEmpty() ? (isRadio ? 'l' : '4') : record.mark.front();
    const auto* known = std::find_if(
        std::begin(symbols), std::end(symbols), [&](const Symbol& symbol) { return symbol.code == code; });
    const Symbol& symbol = known == std::end(symbols) ? symbols[0] : *known;

    ContentStream content;
    // Radio buttons are round, unless they show something other than a disc.
    const bool isRound = isRadio && symbol.code == 'l';
    if (isRound)
        drawRoundFrame(content, record.frame, result.size);
    else
        drawFrame(content, record.frame, result.size, 1);
    if (isOn) {
        const double inset = borderInset(field);
        const double room = std::min(result.size.width(), result.size.height()) - 2.0 * inset;
        const double size = std::max(1.0, room * (isRound ? discPart : markPart) / symbolHeight);
        result.font = symbolFontName;
        content.add({}, "q");
        content.add({}, "BT");
        content.addRaw(record.style.colourOperator);
        content.addRaw(contentName(result.font) + ' ' + contentNumber(size) + " Tf");
        content.add(
            {1, 0, 0, 1, (result.size.width() - symbol.width * size) / 2.0,
             (result.size.height() - symbolHeight * size) / 2.0},
            "Tm");
        content.add(QByteArray(1, symbol.code), "Tj");
        content.add({}, "ET");
        content.add({}, "Q");
    }
    result.content = content.bytes();
    return result;
}

pdf_obj*
makeAppearance(fz_context* ctx, pdf_document* document, pdf_obj* widget, const FieldAppearance& appearance)
{
    pdf_obj* resources = nullptr;
    fz_buffer* content = nullptr;
    pdf_obj* result = nullptr;
    fz_var(resources);
    fz_var(content);
    fz_var(result);
    fz_try(ctx)
    {
        resources = pdf_new_dict(ctx, document, 2);
        addResources(ctx, document, widget, appearance, resources);
        content = fz_new_buffer_from_copied_data(
            ctx, reinterpret_cast<const unsigned char*>(appearance.content.constData()),
            static_cast<std::size_t>(appearance.content.size()));
        const fz_rect box = {
            0, 0, static_cast<float>(appearance.size.width()), static_cast<float>(appearance.size.height())};
        result = pdf_new_xobject(ctx, document, box, turned(appearance), resources, content);
    }
    fz_always(ctx)
    {
        fz_drop_buffer(ctx, content);
        pdf_drop_obj(ctx, resources);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
    return result;
}

} // namespace pdf
