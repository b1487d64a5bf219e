// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "cli/Options.h"
#include "document/PDFTextExtractor.h"
#include "pdf/PDFError.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quillo::cli {

/// Reads the pages of a PDF, as the options say, or of plain text, of which there is a limit. The error's
/// message is a reason that fits behind the file's name.
pdf::Result<PDFTextExtractor::Reading>
readInput(const Input& input, const std::optional<QString>& password, const ReadingOptions& options);

/// Reads all of standard input as UTF-8.
pdf::Result<QString> readStandardInput();

/// Cuts text into its pages at the form feeds; a page without a form feed is one page. No page has boxes.
PageTexts pagesOfPlainText(const QString& text);

} // namespace quillo::cli
