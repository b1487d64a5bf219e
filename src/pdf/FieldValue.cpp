// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FieldValue.h"

#include "pdf/Limits.h"

#include <algorithm>
#include <utility>

namespace pdf {
namespace {

PDFError refusal(const char* message)
{
    return {PDFError::Code::refused, QString::fromLatin1(message)};
}

QString normalised(QString text, bool isMultiline)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
    text.remove(QChar(u'\0'));
    if (!isMultiline)
        text.replace(u'\n', u' ');
    return text;
}

struct ValueTaker
{
    PDFFormField& field;

    std::optional<PDFError> operator()(const QString& given) const
    {
        const QString text = normalised(given, field.isMultiline);
        if (text.size() > limits::fieldText)
            return refusal("the text is too long for a form field");
        if (field.kind == FormFieldKind::comboBox)
            return takeComboText(text);
        if (field.kind != FormFieldKind::text)
            return refusal("the field takes no text");
        if (field.maximumLength > 0 && text.toUcs4().size() > field.maximumLength)
            return refusal("the text is longer than the field allows");
        field.text = text;
        return std::nullopt;
    }

    std::optional<PDFError> operator()(bool isOn) const
    {
        if (field.kind != FormFieldKind::checkBox && field.kind != FormFieldKind::radioButton)
            return refusal("the field cannot be turned on or off");
        if (field.isOn && !isOn && !field.canTurnOff)
            return refusal("one button of the group has to be on");
        field.isOn = isOn;
        return std::nullopt;
    }

    std::optional<PDFError> operator()(std::vector<int> selection) const
    {
        const bool isCombo = field.kind == FormFieldKind::comboBox;
        if (!isCombo && field.kind != FormFieldKind::listBox)
            return refusal("the field has no options");
        std::sort(selection.begin(), selection.end());
        selection.erase(std::unique(selection.begin(), selection.end()), selection.end());
        if (selection.size() > 1 && !field.isMultipleChoice)
            return refusal("the field takes one option only");
        const auto isOption = [&](int i) { return i >= 0 && std::cmp_less(i, field.options.size()); };
        if (!std::all_of(selection.begin(), selection.end(), isOption))
            return refusal("the field has no such option");
        field.selection = std::move(selection);
        if (isCombo)
            field.text = field.selection.empty() ? QString() : displayText(field.selection.front());
        return std::nullopt;
    }

private:
    QString displayText(int option) const
    {
        return field.options[static_cast<std::size_t>(option)].displayText;
    }

    std::optional<PDFError> takeComboText(const QString& text) const
    {
        const auto option =
            std::find_if(field.options.begin(), field.options.end(), [&](const FormFieldOption& candidate) {
                return candidate.displayText == text;
            });
        const bool isOption = option != field.options.end();
        // An empty text is the way to choose nothing.
        if (!isOption && !field.isEditable && !text.isEmpty())
            return refusal("the text is not among the options of the field");
        field.selection.clear();
        if (isOption)
            field.selection.push_back(static_cast<int>(option - field.options.begin()));
        field.text = text;
        return std::nullopt;
    }
};

} // namespace

std::optional<PDFError> takeValue(PDFFormField& field, const FormValue& value)
{
    if (!field.isFillable())
        return refusal("the field may not be filled in");
    return std::visit(ValueTaker{field}, value);
}

} // namespace pdf
