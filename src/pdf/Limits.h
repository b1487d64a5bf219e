// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <chrono>
#include <cstddef>
#include <cstdint>

// What a document may cost. A file that asks for more is broken or hostile, and what it asked for fails.
namespace pdf::limits {

/// Live memory of the engine over all documents and threads.
constexpr std::size_t memory = std::size_t{768} << 20;

/// What is kept for reuse, in bytes, whatever is shown. A view whose visible tiles alone take more than its
/// share has these and nothing else.
namespace kept {

/// Unpacked pictures, packed ones, fonts: MuPDF's store, part of the above and given up when that is short.
constexpr std::size_t store = std::size_t{40} << 20;

/// Glyphs, by MuPDF's own decision.
constexpr std::size_t glyphs = std::size_t{1} << 20;

/// Tiles of a view.
constexpr std::size_t tiles = std::size_t{32} << 20;

/// Tiles of pages with annotations, as they are and without the annotations, for the next change of one.
constexpr std::size_t annotatedTiles = std::size_t{20} << 20;

/// Display lists of pages of which no tile is wanted.
constexpr std::size_t displayLists = std::size_t{6} << 20;

/// Texts of the visible pages and their neighbours; about that, however full they are.
constexpr std::size_t texts = std::size_t{1} << 20;

static_assert(store + glyphs + tiles + annotatedTiles + displayLists + texts <= std::size_t{100} << 20);

} // namespace kept

/// Blocks of memory from this size on go back to the system as soon as they are given back.
constexpr int largeBlock = 512 << 10;

/// A picture of more pixels is unpacked in part where only a part is drawn. Three bytes a pixel, it has room
/// in the store.
constexpr std::int64_t wholePicture = std::int64_t{12} << 20;
static_assert(wholePicture * 3 < static_cast<std::int64_t>(kept::store));

/// What a JPEG or JPEG 2000 decoder may take for itself, besides the above.
constexpr std::size_t decoder = std::size_t{256} << 20;

/// The processor time of one operation: reading a page's text, recording or drawing a list.
constexpr std::chrono::milliseconds operation{6000};

/// The processor time of opening a file. A damaged one is read from end to end to be repaired, which takes
/// some seconds for every hundred megabytes.
constexpr std::chrono::milliseconds opening(long long bytes)
{
    constexpr long long bytesPerMillisecond = 8192;
    return operation + std::chrono::milliseconds(bytes / bytesPerMillisecond);
}

/// The time of saving, which is not to be given up for a document that is merely big or a disk that is slow.
constexpr std::chrono::minutes saving{10};

/// The processor time of preparing one page for printing.
constexpr std::chrono::milliseconds printedPage{20'000};

/// Sheets of one print.
constexpr std::size_t printedSheets = 100'000;

/// Pixels of a page that is printed as a picture; a page that is bigger gets a coarser one.
constexpr double printedPixels = 150e6;

/// The biggest file whose content is copied away when the document is changed.
constexpr long long preservedFile = 256LL << 20;

/// How long an operation that was told to stop may take to notice by itself, before it is refused memory.
constexpr std::chrono::milliseconds grace{250};

/// Glyphs of one page's text. The fullest telephone directory has some ten thousand.
constexpr std::size_t glyphsPerPage = 2'000'000;

/// Annotations of one page that are looked at.
constexpr int annotationsPerPage = 20'000;

/// Bytes of a link's address.
constexpr std::size_t linkAddress = 16 * 1024;

/// Text that is kept of one document for searching. A book of a thousand pages has some two million bytes.
constexpr qsizetype textIndex = qsizetype{64} << 20;

/// How far up and down the edges of one path may go in pixels. MuPDF fills some million pixels of edges a
/// second and cannot be interrupted in the middle of a path.
constexpr double pathTravel = 10e6;

/// Dashes of one stroke.
constexpr double dashes = 1e6;

/// Pixels that one tiling pattern may paint, over and over one another.
constexpr double tiledPixels = 500e6;

/// Copies of a tile in one tiling pattern.
constexpr double tiles = 4e6;

/// Depth of a page tree; a deeper one is a loop.
constexpr int pageTreeDepth = 64;

/// Depth of a tree of form fields; a deeper one is a loop.
constexpr int fieldTreeDepth = 32;

/// Form fields that one operation looks at, and options of one field.
constexpr int fieldsAtATime = 200'000;

/// Form fields that get new appearances together.
constexpr std::size_t renewedFields = 5'000;

/// UTF-16 units of a form field's text.
constexpr long long fieldText = 100'000;

/// UTF-16 units of a line of text that are drawn with the system's fonts; more do not fit on a page.
constexpr long long drawnCharacters = 2'000;

} // namespace pdf::limits
