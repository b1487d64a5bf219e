// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFFormField.h"

#include <mupdf/pdf.h>

#include <QString>

// The form of a document as a tree of fields (ISO 32000-1, 12.7). A node's parents give it what it does not
// say itself; a node without a name is a widget of the node above. All functions borrow and may throw as
// MuPDF does.
namespace pdf::fields {

/// The document's form dictionary, or null.
pdf_obj* form(fz_context* ctx, pdf_document* document);

/// True where the document has a form with fields.
bool hasFields(fz_context* ctx, pdf_document* document);

/// True where the form is made for another technology (XFA) and has no fields of this one: nothing in it can
/// be filled in here.
bool isXFAOnly(fz_context* ctx, pdf_document* document);

/// The node that stands for the widget's field: the widget itself or the nearest parent with a name.
pdf_obj* fieldOf(fz_context* ctx, pdf_obj* widget);

/// What the node or its nearest parent says under the key, and for text the form as a whole; null for
/// nothing.
pdf_obj* inherited(fz_context* ctx, pdf_obj* node, pdf_obj* key);
pdf_obj* inheritedOrOfForm(fz_context* ctx, pdf_document* document, pdf_obj* node, pdf_obj* key);

int flags(fz_context* ctx, pdf_obj* node);

/// Appends the full name of the field.
void appendName(fz_context* ctx, pdf_obj* field, QString& name);

/// False where the node has no type that is known.
bool readKind(fz_context* ctx, pdf_obj* node, FormFieldKind& kind);

/// The name of the state that turns the button on: the one in its appearances that is not "Off", or what it
/// would be called. Never null.
const char* onState(fz_context* ctx, pdf_obj* widget);

/// A font among the resources that fields share, or null.
pdf_obj* sharedFont(fz_context* ctx, pdf_document* document, pdf_obj* widget, const char* name);

/// Sees to it that there is such a font: a standard one takes the place of one that is missing. Changes the
/// document only in that case.
void ensureSharedFont(fz_context* ctx, pdf_document* document, pdf_obj* widget, const char* name);

/// Takes from the form what would contradict a changed field of it: a form for another technology (XFA),
/// which has values of its own and which readers would show instead. Puts the field into the form where the
/// form does not have it.
void prepareForChange(fz_context* ctx, pdf_document* document, pdf_obj* field);

/// True where the appearances of fields are not to be trusted and viewers are to make them from the values.
bool needsAppearances(fz_context* ctx, pdf_document* document);

} // namespace pdf::fields
