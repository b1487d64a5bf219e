// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFFormField.h"

#include <vector>

// Where the Tab key stops among the form fields of a page, in their order. Each field that can be filled in
// is a stop, but a group of radio buttons is one together: the button that is on, or the first one while none
// is. The other buttons of the group are reached by the arrow keys.
namespace pdf {

/// The stop that comes next after the widget, or before it; null where there is none on the page. The group
/// of the widget itself is passed by.
const PDFFormField*
tabStopAfter(const std::vector<PDFFormField>& fields, const FormWidget& widget, bool forward);

/// The first stop of the page, or the last one when walking backwards; null where there is none.
const PDFFormField* firstTabStop(const std::vector<PDFFormField>& fields, bool forward);

} // namespace pdf
