// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/AnnotationChange.h"
#include "pdf/CookieScope.h"
#include "pdf/FieldGroup.h"
#include "pdf/FieldPainter.h"
#include "pdf/FieldValue.h"
#include "pdf/PDFError.h"
#include "pdf/PDFFormField.h"

#include <optional>
#include <vector>

namespace pdf {

class DocumentHandle;

/// Gives form fields new values and draws their appearances, so that the values are read and shown by others
/// as well; a change that fails leaves both as they were. No script of the document is run. To be used under
/// the document's lock, for one operation.
class FormWriter
{
public:
    FormWriter(DocumentHandle& document, CookieScope& scope);

    /// Sets the field that the widget belongs to and gives the pages on which something looks different now.
    Result<std::vector<int>> set(const FormWidget& widget, const FormValue& value);

    /// The same for a widget on the page that is known by its object.
    Result<std::vector<int>> set(pdf_obj* widget, int page, const FormValue& value);

private:
    void spreadValue();
    void spreadState();
    std::optional<PDFError> write();
    std::optional<PDFError> writeValues(AnnotationChange& change);
    void renewAll();
    void collectPages(fz_context* ctx);

    DocumentHandle& m_document;
    CookieScope& m_scope;
    FieldPainter m_painter;
    fields::FieldGroup m_group;
    /// Of the widget that is set.
    int m_page = -1;
    std::vector<int> m_pages;
};

} // namespace pdf
