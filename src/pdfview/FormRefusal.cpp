// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormRefusal.h"

#include "pdf/Limits.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>

namespace pdf {
namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(pdf::FormRefusal)
};

/// Why a text is too long; empty where it is not.
QString lengthText(const PDFFormField& field, const FormValue& value)
{
    const auto* text = std::get_if<QString>(&value);
    const bool hasOwnLimit = field.maximumLength > 0 && field.maximumLength < limits::fieldText;
    const qsizetype most = hasOwnLimit ? field.maximumLength : limits::fieldText;
    const qsizetype length = !text ? 0 : hasOwnLimit ? text->toUcs4().size() : text->size();
    if (length <= most)
        return {};
    const QLocale locale;
    return Texts::tr("The text is too long for this field: it has %1 characters, and there is room for %2.")
        .arg(locale.toString(length), locale.toString(most));
}

QString reason(const PDFFormField& field, const FormValue& value, const PDFError& error)
{
    QString length = lengthText(field, value);
    if (!length.isEmpty())
        return length;
    switch (error.code) {
    case PDFError::Code::limitExceeded:
        return Texts::tr("There is not enough memory to change this field, or it takes too long.");
    case PDFError::Code::damaged:
        return Texts::tr("This field cannot be changed, because the document is damaged.");
    default:
        return Texts::tr("The document does not allow this value.");
    }
}

} // namespace

QString refusalText(const PDFFormField& field, const FormValue& value, const PDFError& error)
{
    const bool isButton = field.kind == FormFieldKind::checkBox || field.kind == FormFieldKind::radioButton;
    const QString outcome =
        isButton ? Texts::tr("The field stays as it was.")
                 : Texts::tr("What you entered is not in the document. Change it, or press Escape to go back "
                             "to what the document has.");
    return reason(field, value, error) + QLatin1Char(' ') + outcome;
}

} // namespace pdf
