// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/PDFError.h"

#include <QImage>
#include <QRect>
#include <QRectF>
#include <QSizeF>

#include <cstddef>
#include <memory>
#include <vector>

namespace pdf {

struct DisplayListHandle;

/// The drawing operations of a page, recorded once. Immutable and cheap to copy; any number of threads may
/// rasterise it at the same time without the document's lock.
class PDFDisplayList
{
public:
    /// Size of the page in display space (points).
    QSizeF displaySize() const;

    /// True where nothing is drawn at all.
    bool isEmpty() const;

    /// The places in display space, few and perhaps too large, outside of which this list draws what the
    /// other one does. Both are of the same page. Takes time in proportion to their lengths, which is nothing
    /// beside drawing them.
    std::vector<QRectF> difference(const PDFDisplayList& other) const;

    /// Whether it shows pictures that take longer to unpack than to draw. They are unpacked by the first
    /// drawing at a scale, and kept for the next ones as long as there is room.
    bool hasPictures() const;

    /// About what it keeps in memory: itself, and the packed pictures and the fonts that came with it.
    std::size_t bytes() const;

    /// Draws a part of the page over what the image holds. `scale` is pixels per point; the image's upper
    /// left pixel is the pixel `origin` of the whole page drawn at that scale, so neighbouring tiles fit
    /// without a seam (an antialiased edge may differ by a shade from the same edge drawn in one piece). The
    /// image must be Format_RGB32 or Format_ARGB32_Premultiplied; device pixel ratios are the caller's
    /// business. Fails with `cancelled` or `limitExceeded` and then leaves the image half drawn.
    Result<std::monostate>
    draw(QImage& image, QPoint origin, double scale, const Cancellation& cancellation = {}) const;

private:
    friend class PDFPage;
    explicit PDFDisplayList(std::shared_ptr<const DisplayListHandle> handle);

    std::shared_ptr<const DisplayListHandle> m_handle;
};

/// The pixels that a page of this display size covers at a scale: the size rounded up, at least 1 by 1.
QSize pixelSize(QSizeF displaySize, double scale);

} // namespace pdf
