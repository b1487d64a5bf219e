// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <mupdf/fitz.h>

#include <cstdint>

namespace pdf {

/// Adds to `samples` those of the pictures that the device records, which is one of fz_new_list_device(), on
/// this thread, until it counts for another device.
void countPictures(fz_device* device, std::int64_t& samples);

} // namespace pdf
