// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TabStops.h"

#include <algorithm>

namespace pdf {
namespace {

bool isOfOneGroup(const PDFFormField& one, const PDFFormField& other)
{
    return one.kind == FormFieldKind::radioButton && other.kind == one.kind && one.name == other.name;
}

bool isStop(const std::vector<PDFFormField>& fields, const PDFFormField& field)
{
    if (!field.isFillable() || field.kind != FormFieldKind::radioButton)
        return field.isFillable();
    const PDFFormField* stop = nullptr;
    for (const PDFFormField& other : fields) {
        if (!other.isFillable() || !isOfOneGroup(field, other))
            continue;
        if (other.isOn)
            return other.widget == field.widget;
        if (!stop)
            stop = &other;
    }
    return stop == &field;
}

/// Walks from the place towards the end that the direction has.
template <typename Iterator, typename IsWanted>
const PDFFormField* firstOf(Iterator first, Iterator last, IsWanted isWanted)
{
    const auto place = std::find_if(first, last, isWanted);
    return place == last ? nullptr : &*place;
}

} // namespace

const PDFFormField*
tabStopAfter(const std::vector<PDFFormField>& fields, const FormWidget& widget, bool forward)
{
    const auto from = std::find_if(
        fields.begin(), fields.end(), [&](const PDFFormField& field) { return field.widget == widget; });
    if (from == fields.end())
        return nullptr;
    const auto isNext = [&](const PDFFormField& field) {
        return !isOfOneGroup(*from, field) && isStop(fields, field);
    };
    if (forward)
        return firstOf(from + 1, fields.end(), isNext);
    return firstOf(std::make_reverse_iterator(from), fields.rend(), isNext);
}

const PDFFormField* firstTabStop(const std::vector<PDFFormField>& fields, bool forward)
{
    const auto isFirst = [&](const PDFFormField& field) { return isStop(fields, field); };
    return forward ? firstOf(fields.begin(), fields.end(), isFirst)
                   : firstOf(fields.rbegin(), fields.rend(), isFirst);
}

} // namespace pdf
