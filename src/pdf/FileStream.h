// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <mupdf/fitz.h>

#include <memory>

namespace pdf {

class SourceFile;

/// Hands an open file to MuPDF. Reading fails once the operation of the calling thread is stopped, so that
/// loops end that work their way through the file, such as a repair. The file is read as it is needed and
/// never mapped, because somebody may cut it short meanwhile. May throw as MuPDF does.
fz_stream* newFileStream(fz_context* ctx, const std::shared_ptr<SourceFile>& file);

} // namespace pdf
