// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "support/ToolRun.h"

#include <QImage>

#include <optional>

// Other PDF programs, for looking at what this one has written.

/// The programs that have something to say against a PDF file: qpdf's check, and Poppler, MuPDF and PDFium
/// where they do not open it or do not come to an end. One that is not installed says nothing.
QStringList programsAgainst(const QString& path);

/// Those that are against a saved file, but not against the one from which it comes.
QStringList programsLost(const QString& original, const QString& saved);

enum class Renderer { poppler, pdfium, mupdf };

/// A page of a file, the first unless said otherwise, with its annotations, at so many pixels a point; absent
/// when the program is not installed, null when it cannot draw the page. Qt does not have PDFium draw form
/// fields.
std::optional<QImage> tryRenderingWith(Renderer renderer, const QString& path, int page = 0, int scale = 1);

/// The same of a page that the program can draw.
std::optional<QImage> renderWith(Renderer renderer, const QString& path, int page = 0, int scale = 1);

QByteArray readFile(const QString& path);
