// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "cli/Options.h"
#include "document/PDFTextExtractor.h"
#include "pdf/PDFError.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quillo::cli {

/// Reads the pages of a PDF or of plain text, with a limit on the time that a PDF may take and on the size of
/// plain text. Where a PDF needs a password and none is given, the user is asked at most three times. The
/// error's message is a reason that fits behind the file's name.
pdf::Result<PDFTextExtractor::Reading> readInput(const Input& input, const std::optional<QString>& password);

/// Reads all of a text; "-" is standard input. The text is UTF-8 unless its byte order mark says otherwise;
/// the mark is no part of it. A text that cannot be read to its end, or is too long, is an error.
pdf::Result<QString> readPlainText(const QString& path);

/// Cuts text into its pages at the form feeds; a page without a form feed is one page. No page has boxes.
PageTexts pagesOfPlainText(const QString& text);

} // namespace quillo::cli
