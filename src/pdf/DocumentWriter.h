// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFError.h"

#include <QString>

#include <optional>

namespace pdf {

class DocumentHandle;

/// Does what PDFDocument::write() promises. The file's content is copied without the document's lock; only
/// the objects are written under it.
std::optional<PDFError> writeDocument(
    DocumentHandle& document, const QString& path, Overwrite overwrite, const Cancellation& cancellation);

} // namespace pdf
