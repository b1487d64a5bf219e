// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/CookieScope.h"
#include "pdf/FieldGroup.h"
#include "pdf/FieldValue.h"
#include "pdf/PDFError.h"
#include "pdf/PDFFormField.h"

#include <optional>
#include <vector>

namespace pdf {

class DocumentHandle;

/// Gives form fields new values and draws their appearances, so that the values are read and shown by others
/// as well. No script of the document is run. To be used under the document's lock, for one operation.
class FormWriter
{
public:
    FormWriter(DocumentHandle& document, CookieScope& scope);

    /// Sets the field that the widget belongs to and gives the pages on which something looks different now.
    Result<std::vector<int>> set(const FormWidget& widget, const FormValue& value);

private:
    std::optional<PDFError> find(const FormWidget& widget);
    void spreadValue();
    void spreadState();
    std::optional<PDFError> write();
    std::optional<PDFError> writeAppearances(fields::FieldGroup::Member& member);
    std::optional<PDFError> writeValueAppearance(fields::FieldGroup::Member& member);
    std::optional<PDFError> writeButtonAppearances(fields::FieldGroup::Member& member);
    std::optional<PDFError> renewAll();
    void collectPages(fz_context* ctx);

    DocumentHandle& m_document;
    CookieScope& m_scope;
    fields::FieldGroup m_group;
    FormWidget m_widget;
    std::vector<int> m_pages;
};

} // namespace pdf
