// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "cli/Options.h"
#include "document/PDFTextExtractor.h"
#include "pdf/PDFError.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quillo::cli {

/// Reads the pages of a PDF, as the options say, or of plain text, of which there is a limit. Where a PDF
/// needs a password and none is given, the user is asked at most three times. A PDF that comes through
/// standard input without its end is an error. The error's message is a reason that fits behind the file's
/// name.
pdf::Result<PDFTextExtractor::Reading>
readInput(const Input& input, const std::optional<QString>& password, const ReadingOptions& options);

/// Reads all of a text; "-" is standard input. The text is UTF-8 unless its byte order mark says otherwise;
/// the mark is no part of it. A text that cannot be read to its end, or is too long, is an error.
pdf::Result<QString> readPlainText(const QString& path);

/// Cuts text into its pages at the form feeds; a page without a form feed is one page. No page has boxes.
PageTexts pagesOfPlainText(const QString& text);

} // namespace quillo::cli
