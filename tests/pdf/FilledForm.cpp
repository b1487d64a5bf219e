// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FilledForm.h"

#include "support/Printing.h"
#include "support/ToolRun.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <map>
#include <optional>

namespace pdf {
namespace {

// qpdf ends with this where it had to mend something.
constexpr int qpdfHasWarnings = 3;

QString textFor(const PDFFormField& field, int number)
{
    QString text = QStringLiteral("Qx%1").arg(number % 1000, 3, 10, QLatin1Char('0'));
    if (field.isMultiline)
        text += QStringLiteral("\nline two");
    return field.maximumLength > 0 ? text.left(field.maximumLength) : text;
}

/// Another value than the field has; none where there is no other.
std::optional<FormValue> newValue(const PDFFormField& field, int number)
{
    const int options = static_cast<int>(field.options.size());
    switch (field.kind) {
    case FormFieldKind::text:
        return textFor(field, number);
    case FormFieldKind::checkBox:
        return !field.isOn;
    case FormFieldKind::radioButton:
        if (field.isOn)
            return std::nullopt;
        return true;
    case FormFieldKind::comboBox:
        if (field.isEditable)
            return textFor(field, number);
        [[fallthrough]];
    case FormFieldKind::listBox: {
        if (options == 0)
            return std::nullopt;
        std::vector<int> selection = {options - 1};
        if (field.isMultipleChoice && options > 1)
            selection = {0, options - 1};
        if (selection == field.selection)
            selection = {0};
        if (selection == field.selection)
            return std::nullopt;
        return selection;
    }
    default:
        return std::nullopt;
    }
}

/// What qpdf calls a text.
QJsonValue jsonString(const QString& text)
{
    return QStringLiteral("u:") + text;
}

QJsonValue jsonName(const QByteArray& name)
{
    return QLatin1Char('/') + QString::fromUtf8(name);
}

QJsonValue jsonValue(const PDFFormField& field)
{
    QJsonArray values;
    for (const int option : field.selection)
        values.append(jsonString(field.options[static_cast<std::size_t>(option)].exportValue));
    if (field.kind == FormFieldKind::text || (field.kind == FormFieldKind::comboBox && values.isEmpty()))
        return jsonString(field.text);
    if (values.size() == 1)
        return values[0];
    return values;
}

std::string printed(const QJsonValue& value)
{
    return QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).toStdString();
}

bool isButton(const PDFFormField& field)
{
    return field.kind == FormFieldKind::checkBox || field.kind == FormFieldKind::radioButton;
}

QString withoutSpaces(QString text)
{
    text.removeIf([](QChar c) { return c.isSpace(); });
    return text;
}

/// Whether the field has the value by now, as another place of one that was filled.
bool isSet(PDFDocument& document, const FormWidget& widget, const FormValue& value)
{
    const auto page = document.page(widget.page);
    const auto fields = page ? page->formFields() : Result<std::vector<PDFFormField>>(PDFError{});
    if (!fields)
        return false;
    return std::any_of(fields->begin(), fields->end(), [&](const PDFFormField& field) {
        return field.widget == widget && (value == FormValue(field.text) || value == FormValue(field.isOn) ||
                                          value == FormValue(field.selection));
    });
}

/// The form as qpdf has it; absent when it is not installed or cannot read the file.
std::optional<QJsonValue> qpdfForm(const QString& path)
{
    const auto result = runTool(
        QStringLiteral("qpdf"),
        {QStringLiteral("--no-warn"), QStringLiteral("--json"), QStringLiteral("--json-key=acroform"), path});
    if (!result || (result->exitCode != 0 && result->exitCode != qpdfHasWarnings))
        return std::nullopt;
    const QJsonDocument json = QJsonDocument::fromJson(result->output);
    EXPECT_TRUE(json.isObject()) << result->output.toStdString();
    return json[u"acroform"];
}

} // namespace

std::vector<PDFFormField> formFields(PDFDocument& document, int pages)
{
    std::vector<PDFFormField> all;
    for (int i = 0; i < std::min(pages, document.pageCount()); ++i) {
        const auto page = document.page(i);
        const auto fields = page ? page->formFields() : Result<std::vector<PDFFormField>>(PDFError{});
        if (fields)
            all.insert(all.end(), fields->begin(), fields->end());
    }
    return all;
}

std::vector<FilledField>
fillForm(PDFDocument& document, int pages, const std::function<bool(int number)>& isWanted)
{
    const std::vector<PDFFormField> before = formFields(document, pages);
    std::map<QString, int> numbers;
    QSet<int> filled;
    const auto numberOf = [&](std::size_t i) {
        const QString key = before[i].name.isEmpty() ? QStringLiteral(" %1").arg(i) : before[i].name;
        return numbers.try_emplace(key, static_cast<int>(numbers.size())).first->second;
    };
    for (std::size_t i = 0; i < before.size(); ++i) {
        const PDFFormField& field = before[i];
        const int number = numberOf(i);
        const auto value = field.isFillable() ? newValue(field, number) : std::nullopt;
        if (!value || (isWanted && !isWanted(number)))
            continue;
        // As another place of the same field.
        if (filled.contains(number) && isSet(document, field.widget, *value))
            continue;
        const auto result = document.setFormValue(field.widget, *value);
        EXPECT_TRUE(result) << field.name.toStdString() << ": " << result.error().message.toStdString();
        if (result)
            filled.insert(number);
    }
    const std::vector<PDFFormField> after = formFields(document, pages);
    EXPECT_EQ(after.size(), before.size());
    std::vector<FilledField> result;
    for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i) {
        EXPECT_EQ(after[i].widget, before[i].widget);
        if (filled.contains(numberOf(i)))
            result.push_back({before[i], after[i]});
    }
    return result;
}

bool isDrawnByViewers(const QString& path)
{
    const auto form = qpdfForm(path);
    return form && (*form)[u"needappearances"].toBool();
}

bool expectValuesForQpdf(const QString& path, const std::vector<FilledField>& fields)
{
    const auto form = qpdfForm(path);
    if (!form)
        return false;
    std::map<int, QJsonValue> found;
    for (const QJsonValue field : (*form)[u"fields"].toArray()) {
        const QString widget = field[u"annotation"][u"object"].toString();
        found[widget.section(QLatin1Char(' '), 0, 0).toInt()] = field;
    }
    for (const auto& [before, after] : fields) {
        const auto entry = found.find(after.widget.object);
        if (entry == found.end()) {
            EXPECT_EQ(after.widget.object, 0) << after.name.toStdString() << " is not in the form";
            continue;
        }
        const QJsonValue& field = entry->second;
        EXPECT_EQ(field[u"fullname"].toString(), after.name);
        if (isButton(after)) {
            const QJsonValue state = field[u"annotation"][u"appearancestate"];
            EXPECT_EQ(printed(state), printed(jsonName(after.isOn ? after.onState : QByteArray("Off"))))
                << after.name.toStdString();
            if (after.isOn) {
                EXPECT_EQ(printed(field[u"value"]), printed(jsonName(after.onState)))
                    << after.name.toStdString();
            }
        } else {
            EXPECT_EQ(printed(field[u"value"]), printed(jsonValue(after))) << after.name.toStdString();
        }
    }
    return true;
}

int expectTextsForPoppler(const QString& path, const std::vector<FilledField>& fields)
{
    std::map<int, QString> pages;
    int count = 0;
    for (const auto& [before, after] : fields) {
        const bool hasText = after.kind == FormFieldKind::text || after.kind == FormFieldKind::comboBox;
        if (!hasText || after.isPassword || after.bounds.isEmpty())
            continue;
        const int page = after.widget.page;
        if (!pages.contains(page)) {
            const QString number = QString::number(page + 1);
            const auto result = runTool(
                QStringLiteral("pdftotext"),
                {QStringLiteral("-q"), QStringLiteral("-raw"), QStringLiteral("-f"), number,
                 QStringLiteral("-l"), number, path, QStringLiteral("-")});
            if (!result)
                return 0;
            pages[page] = withoutSpaces(QString::fromUtf8(result->output));
        }
        ++count;
        EXPECT_TRUE(pages[page].contains(withoutSpaces(after.text)))
            << after.name.toStdString() << " shows " << after.text.toStdString() << ", the page "
            << pages[page].toStdString();
    }
    return count;
}

} // namespace pdf
