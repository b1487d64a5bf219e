// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/FieldValue.h"
#include "pdf/PDFError.h"
#include "pdf/PDFFormField.h"

#include <QString>

namespace pdf {

/// What the user is told when a field does not take a value: why, and what has become of the value.
QString refusalText(const PDFFormField& field, const FormValue& value, const PDFError& error);

} // namespace pdf
