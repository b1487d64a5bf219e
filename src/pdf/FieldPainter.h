// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/CookieScope.h"
#include "pdf/FormReader.h"
#include "pdf/PDFError.h"

#include <mupdf/pdf.h>

#include <optional>

namespace pdf {

class AnnotationChange;
class DocumentHandle;

/// Draws form fields: gives a widget the appearance that shows what its field holds. Whatever changes a field
/// goes through here. To be used under the document's lock, for one operation.
class FieldPainter
{
public:
    FieldPainter(DocumentHandle& document, CookieScope& scope);

    /// Makes the widget's appearance anew, as part of the change. The record says what the field is and
    /// holds; push buttons and signatures keep the appearance that they have.
    std::optional<PDFError> paint(AnnotationChange& change, pdf_obj* widget, fields::FieldRecord& record);

    /// The same from what the widget's objects say now.
    std::optional<PDFError> paint(AnnotationChange& change, pdf_obj* widget);

private:
    std::optional<PDFError>
    paintValue(AnnotationChange& change, pdf_obj* widget, fields::FieldRecord& record);
    std::optional<PDFError>
    paintButton(AnnotationChange& change, pdf_obj* widget, const fields::FieldRecord& record);

    DocumentHandle& m_document;
    CookieScope& m_scope;
};

} // namespace pdf
