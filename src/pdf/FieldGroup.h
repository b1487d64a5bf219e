// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/FormReader.h"
#include "pdf/ObjectHandle.h"

#include <QString>

#include <unordered_set>
#include <vector>

namespace pdf::fields {

/// Widgets of a form, with what belongs to each. It lives outside of the calls of MuPDF that fill it, and
/// under the document's lock.
class FieldGroup
{
public:
    struct Member
    {
        ObjectHandle widget;
        /// The node that stands for the widget's field.
        ObjectHandle field;
        FieldRecord record;
    };

    explicit FieldGroup(DocumentHandle& document);

    /// Takes in the widget and all others that show the same field: those of its own node, and those of other
    /// nodes of the same kind and full name. The widget comes first; nothing is taken in where it belongs to
    /// no field. May throw as MuPDF does.
    void collectAround(fz_context* ctx, pdf_obj* widget);

    /// Takes in the widgets of all fields of the form; false when there are more than the given number. May
    /// throw as MuPDF does.
    bool collectAll(fz_context* ctx, std::size_t most);

    std::vector<Member>& members() { return m_members; }

private:
    bool goOn();
    bool leadsToWanted() const;
    void addWidget(fz_context* ctx, pdf_obj* widget);
    void addWidgetsOf(fz_context* ctx, pdf_obj* node, int depth);
    void addFieldsIn(fz_context* ctx, pdf_obj* nodes, int depth);

    DocumentHandle& m_document;
    std::vector<Member> m_members;
    /// Their widgets, resolved.
    std::unordered_set<const pdf_obj*> m_widgets;
    bool m_takesAll = false;
    QString m_wantedName;
    FormFieldKind m_wantedKind = FormFieldKind::text;
    /// The full name of the node that is looked at.
    QString m_name;
    std::size_t m_most = 0;
    int m_patience = 0;
};

} // namespace pdf::fields
