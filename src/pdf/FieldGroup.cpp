// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FieldGroup.h"

#include "pdf/Engine.h"
#include "pdf/FieldTree.h"
#include "pdf/Handles.h"
#include "pdf/Limits.h"

// Where MuPDF is called, nothing is made that would have to be destroyed: its errors skip destructors.
namespace pdf::fields {

FieldGroup::FieldGroup(DocumentHandle& document)
    : m_document(document)
{}

void FieldGroup::collectAround(fz_context* ctx, pdf_obj* widget)
{
    m_takesAll = true;
    m_most = limits::fieldsAtATime;
    m_patience = limits::fieldsAtATime;
    addWidget(ctx, widget);
    if (m_members.empty())
        return;
    m_takesAll = false;
    m_wantedName = m_members.front().record.field.name;
    m_wantedKind = m_members.front().record.field.kind;
    addWidgetsOf(ctx, m_members.front().field.get(), 0);
    // Fields without a name have nothing in common.
    if (!m_wantedName.isEmpty())
        addFieldsIn(ctx, pdf_dict_get(ctx, form(ctx, m_document.document), PDF_NAME(Fields)), 0);
}

bool FieldGroup::collectAll(fz_context* ctx, std::size_t most)
{
    m_takesAll = true;
    m_most = most;
    m_patience = limits::fieldsAtATime;
    addFieldsIn(ctx, pdf_dict_get(ctx, form(ctx, m_document.document), PDF_NAME(Fields)), 0);
    return m_patience >= 0 && m_members.size() <= most;
}

bool FieldGroup::goOn()
{
    return --m_patience >= 0 && m_members.size() <= m_most;
}

bool FieldGroup::leadsToWanted() const
{
    return m_name.isEmpty() || m_wantedName == m_name ||
           (m_wantedName.startsWith(m_name) && m_wantedName[m_name.size()] == QLatin1Char('.'));
}

void FieldGroup::addWidget(fz_context* ctx, pdf_obj* widget)
{
    // A form should name each of its nodes once, but the widget that is asked for is reached in two ways.
    const pdf_obj* resolved = pdf_resolve_indirect(ctx, widget);
    bool isNew = false;
    engine::translated(ctx, [&] { isNew = m_widgets.insert(resolved).second; });
    if (!isNew)
        return;
    m_members.emplace_back();
    Member& member = m_members.back();
    if (!readField(ctx, m_document, widget, member.record) ||
        (!m_takesAll && member.record.field.kind != m_wantedKind)) {
        m_members.pop_back();
        return;
    }
    interpretValue(member.record);
    member.widget = ObjectHandle(pdf_keep_obj(ctx, widget));
    pdf_obj* field = fieldOf(ctx, widget);
    member.field = ObjectHandle(pdf_keep_obj(ctx, field));
}

void FieldGroup::addWidgetsOf(fz_context* ctx, pdf_obj* node, int depth)
{
    if (pdf_name_eq(ctx, pdf_dict_get(ctx, node, PDF_NAME(Subtype)), PDF_NAME(Widget))) {
        addWidget(ctx, node);
        return;
    }
    pdf_obj* kids = pdf_dict_get(ctx, node, PDF_NAME(Kids));
    const int count = pdf_array_len(ctx, kids);
    for (int i = 0; i < count && depth < limits::fieldTreeDepth && goOn(); ++i) {
        pdf_obj* kid = pdf_array_get(ctx, kids, i);
        if (!pdf_dict_get(ctx, kid, PDF_NAME(T)))
            addWidgetsOf(ctx, kid, depth + 1);
    }
}

void FieldGroup::addFieldsIn(fz_context* ctx, pdf_obj* nodes, int depth)
{
    const int count = pdf_array_len(ctx, nodes);
    for (int i = 0; i < count && depth < limits::fieldTreeDepth && goOn(); ++i) {
        pdf_obj* node = pdf_array_get(ctx, nodes, i);
        // Below the roots, what has no name is a widget of the node above.
        if (depth > 0 && !pdf_dict_get(ctx, node, PDF_NAME(T)))
            continue;
        if (!m_takesAll) {
            m_name.resize(0);
            appendName(ctx, node, m_name);
            if (!leadsToWanted())
                continue;
        }
        if (m_takesAll || m_name == m_wantedName)
            addWidgetsOf(ctx, node, 0);
        addFieldsIn(ctx, pdf_dict_get(ctx, node, PDF_NAME(Kids)), depth + 1);
    }
}

} // namespace pdf::fields
