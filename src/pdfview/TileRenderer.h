// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/Tile.h"

#include <QImage>
#include <QSizeF>
#include <QTransform>

#include <functional>
#include <memory>
#include <variant>
#include <vector>

namespace pdf {

class PDFDocument;

/// Draws tiles of one document on the render threads, from display lists that are recorded once for a page
/// and kept while the page is wanted and a little longer. It needs neither a window nor an application
/// object, so that the first page can be under way while those are still being made.
///
/// Safe from any thread.
class TileRenderer
{
public:
    /// The page's size in points as it is shown; comes before the page's first picture.
    struct PageSized
    {
        int page = 0;
        QSizeF size;
        /// From page space to display space.
        QTransform pageToDisplay;
        /// The page shows pictures that have to be unpacked first, which takes as long for a small picture of
        /// it as for a sharp one. There is no small picture of such a page.
        bool hasPictures = false;
    };
    struct TileDrawn
    {
        Tile tile;
        /// Format_RGB32; pixels of the page, without a device pixel ratio.
        QImage image;
        /// False when the annotations have changed since: better than nothing, and drawn anew already.
        bool isCurrent = true;
    };
    /// The page cannot be read or drawn, or not within the time and the memory that a page gets.
    struct PageFailed
    {
        int page = 0;
        /// Because another program has written into the file, see PDFDocument::isFileReadable().
        bool isFileChanged = false;
    };
    using Result = std::variant<PageSized, TileDrawn, PageFailed>;

    explicit TileRenderer(std::shared_ptr<PDFDocument> document);
    /// Abandons what runs and waits for nothing.
    ~TileRenderer();
    TileRenderer(const TileRenderer&) = delete;
    TileRenderer& operator=(const TileRenderer&) = delete;

    /// From now on exactly these tiles are wanted, the first of them first. What runs and is not among them
    /// is abandoned.
    void want(std::vector<Tile> tiles);

    /// The annotations of the page have changed. What is being drawn of the page is drawn to its end and
    /// handed out, but not as current, so that there is always something to show however fast changes follow
    /// one another; then it is drawn as it is by then. Of each tile only those parts are drawn in which the
    /// annotations differ. The page's content is not read anew, and not drawn anew where there is room to
    /// keep pictures of it.
    void refreshAnnotations(int page);

    /// The page looks or lies different now: what was read and drawn of it before is not handed out any more,
    /// and it is read anew when it is wanted.
    void refreshPage(int page);

    /// What came since the last call.
    std::vector<Result> takeResults();

    /// `notify` is called on a render thread each time that results begin to wait for takeResults(), at once
    /// if there are any, and never again after it was replaced.
    void setNotifier(std::function<void()> notify);

private:
    class Queue;
    std::shared_ptr<Queue> m_queue;
};

} // namespace pdf
