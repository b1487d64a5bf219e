// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <mupdf/fitz.h>

namespace pdf {

/// Keeps a draw device of MuPDF from operations that it would not come back from in time, because each is one
/// loop that nothing interrupts: paths and dashes without number are left out, clips by such paths become
/// clips by their bounds, and tiles that lie on top of one another are spaced out. `area` is what is drawn
/// on, in pixels. A thread draws to one device at a time.
void limitDrawing(fz_device* device, fz_rect area);

} // namespace pdf
