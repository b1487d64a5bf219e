// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/DefaultAppearance.h"
#include "pdf/FieldFrame.h"
#include "pdf/PDFFormField.h"
#include "pdf/TabOrder.h"

#include <mupdf/pdf.h>

#include <QStringList>
#include <QTransform>

#include <vector>

namespace pdf {

class DocumentHandle;

namespace fields {

/// A field as its objects have it. It lives outside of the calls of MuPDF that fill it.
struct FieldRecord
{
    PDFFormField field;
    DefaultAppearance style;
    FieldFrame frame;
    /// The character of the symbol font that marks a button as on; may be empty.
    QByteArray mark;
    /// Radio buttons with the same state go on together.
    bool isInUnison = false;
    /// The entries of the value, or its one.
    QStringList values;
    /// The indices of the selected options, where the document gives them.
    std::vector<int> indices;
};

struct PageRecord
{
    std::vector<FieldRecord> fields;
    TabOrder order = TabOrder::listed;
    bool isRightToLeft = false;
};

/// False where the encryption keeps the user from filling in fields, or a signature that certifies the
/// document. May throw as MuPDF does.
bool allowsFilling(fz_context* ctx, DocumentHandle& document);

/// Reads the form fields of a page in the order in which it lists them. A widget that cannot be read is left
/// out. May throw as MuPDF does.
void readPage(fz_context* ctx, DocumentHandle& document, pdf_obj* page, int index, PageRecord& record);

/// Reads what the widget is and holds; false where it belongs to no field or is too damaged to be read. May
/// throw as MuPDF does, but not for damage.
bool readField(fz_context* ctx, DocumentHandle& document, pdf_obj* widget, FieldRecord& record);

/// The fields with their values, in the order in which the Tab key walks them.
std::vector<PDFFormField> fieldsOf(PageRecord record, const QTransform& pageToDisplay);

/// Works out from the entries of the record's value what the field shows.
void interpretValue(FieldRecord& record);

} // namespace fields
} // namespace pdf
