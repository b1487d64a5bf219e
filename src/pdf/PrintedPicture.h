// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/PDFError.h"
#include "pdf/PrintFile.h"

namespace pdf {

class PDFPage;

/// Draws the page's content, without annotations, and adds it to the file as pictures in strips, so that the
/// whole page is never in memory. `scale` is pixels per point. Gives the number of a form that shows them in
/// page space. Takes the document's lock.
Result<int> addPicture(PrintFile& file, PDFPage& page, double scale, const Cancellation& cancellation);

} // namespace pdf
