// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFError.h"
#include "pdf/PDFFormField.h"

#include <optional>
#include <variant>

namespace pdf {

/// What a form field can be set to: the text of a text field or a combo box; whether a check box or a radio
/// button is on; the indices of the selected options of a combo box or a list box.
using FormValue = std::variant<QString, bool, std::vector<int>>;

/// Gives the field the value, as far as its rules allow: nothing for what may not be filled in, no more
/// characters than the maximum, only options unless a combo box is editable, one option unless a list box
/// takes several, no radio button turned off whose group wants one to be on. Line feeds become spaces in a
/// field of one line. Otherwise the field stays as it is and the answer says why.
std::optional<PDFError> takeValue(PDFFormField& field, const FormValue& value);

} // namespace pdf
