// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"

#include <QByteArray>

#include <functional>
#include <vector>

// Filling whole forms.

namespace pdf {

/// A field at one of the places where it is shown, with its old value and its new one.
struct FilledField
{
    PDFFormField before;
    PDFFormField after;
};

/// The fields of the first pages.
std::vector<PDFFormField> formFields(PDFDocument& document, int pages);

/// Gives every field of the first pages that may be filled another value, and every text a text of its own.
/// Fields for whose number `isWanted` is false are left as they are; those that are the same field, or of one
/// group of radio buttons, have one number. Each button of a group is turned on once.
std::vector<FilledField>
fillForm(PDFDocument& document, int pages, const std::function<bool(int number)>& isWanted = {});

/// Whether the document has other programs draw all fields themselves; false where qpdf is not installed.
/// When it is filled, all its fields are drawn.
bool isDrawnByViewers(const QString& path);

/// Expects another program to find the new values in the saved file. False when qpdf is not installed or
/// cannot read the file.
bool expectValuesForQpdf(const QString& path, const std::vector<FilledField>& fields);

/// Expects pdftotext to find the new texts where they are shown in the saved file; gives how many it was
/// asked for.
int expectTextsForPoppler(const QString& path, const std::vector<FilledField>& fields);

} // namespace pdf
