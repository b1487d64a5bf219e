// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFLink.h"
#include "pdf/PDFSelection.h"
#include "pdfview/PageViewport.h"
#include "pdfview/TileCache.h"
#include "pdfview/TilePlan.h"
#include "pdfview/TileRenderer.h"

#include <QAbstractScrollArea>
#include <QTransform>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

class QHelpEvent;
class QUrl;

namespace pdf {

class FormFiller;
class HighlightedSelections;
class KeyboardSelector;
class LinkFollower;
class PDFDocument;
class PDFViewInput;
class PageReader;
class ScrollAnimation;
class SelectionEmphasis;
class TextRevealer;
class TextSelector;
class ViewAnnouncer;
class Waker;
struct TextMatch;

/// A document as a view takes it: opened and unlocked, with a renderer that may have its first page under
/// way.
struct ShownDocument
{
    std::shared_ptr<PDFDocument> document;
    int pageCount = 0;
    std::shared_ptr<TileRenderer> renderer;
};

/// Shows the pages of a document one below the other and lets the user scroll and zoom. What stands where is
/// PageViewport's matter, what has to be drawn TilePlan's, drawing TileRenderer's, what a key or a wheel
/// means PDFViewInput's, what the mouse selects TextSelector's and what the keyboard does KeyboardSelector's,
/// where a link leads LinkFollower's; the view brings them together.
///
/// It never waits for the document: pages are read and drawn on other threads and appear when they are ready.
/// The surroundings of the pages have the palette's Window colour, the page edges its Mid colour.
class PDFView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    /// What zooming by hand goes to; setScaleFactor() and fitting may go beyond.
    static constexpr double smallestScaleFactor = 0.25;
    static constexpr double largestScaleFactor = 5.0;

    explicit PDFView(QWidget* parent = nullptr);
    ~PDFView() override;

    /// Null while there is none.
    const std::shared_ptr<PDFDocument>& document() const { return m_shown.document; }
    int pageCount() const { return m_shown.pageCount; }
    /// Shows the first page of the document; a default-made one shows nothing.
    void setDocument(ShownDocument shown);

    /// View points per page point; 1.0 is 100 %.
    double scaleFactor() const { return m_scaleFactor; }
    /// Ends automatic scaling.
    void setScaleFactor(double factor);

    /// While this is on, the page that was current when it was turned on fills the width of the view.
    bool autoScales() const { return m_autoScales; }
    void setAutoScales(bool automatic);

    /// Zooms by hand: the document's point under the given point of the viewport stays there.
    void zoom(double factor, QPointF viewPoint);

    /// Zero-based; -1 without pages.
    int currentPageIndex() const { return m_currentPage; }
    /// Nothing happens while text of that page is being brought into view, see scrollSelectionToVisible().
    void goToPage(int page);
    /// The page counts as the current one until the user scrolls on; nothing moves.
    void setCurrentPage(int page);
    void goToEnd();
    void goToNextPage();
    void goToPreviousPage();
    /// Brings the place to the upper left of the view, as far as the document goes; as soon as it is known
    /// how the page lies, unless the user has gone on by then.
    void goTo(const PDFDestination& destination);
    /// What is at the upper left of the view, or about to be. Absent without pages.
    std::optional<PDFDestination> currentDestination() const;

    /// goTo() as by a link: goBack() returns to where it was followed.
    void follow(const PDFDestination& destination);
    /// To where the last link was followed, and there again. Nothing happens when there is no such place.
    void goBack();
    void goForward();

    /// Scrolls by as little as brings a rectangle of the viewport into view, in view points, with so much
    /// room around it.
    void reveal(const QRectF& rect, double margin);
    /// How far that would be with so much room at the sides.
    QPointF distanceToReveal(const QRectF& rect, QSizeF room) const;
    /// Whether the system wants animations at all.
    bool isAnimated() const;

    /// Scrolls by view points, at once or smoothly.
    void scrollBy(QPointF distance);
    void scrollSmoothlyBy(QPointF distance);
    bool canScrollSideways() const { return m_viewport.maximumX() > m_viewport.minimumX(); }

    const PageViewport& pageViewport() const { return m_viewport; }
    /// The page's place in the viewport, in view points.
    QRectF pageRect(int page) const;

    /// True once firstPagesShown() is certain to come or has come.
    bool hasShownPages() const { return m_hasShownPages; }
    /// Why the page cannot be shown, as a sentence for the user; empty for pages that can.
    QString pageFailure(int page) const;
    /// True when everything visible is drawn for the present scale; a page that cannot be shown counts as
    /// drawn.
    bool isSharp() const;

    /// The page under a point of the viewport, in view points, or else -1; the nearest one on request.
    int page(QPointF viewPoint, bool nearest) const;
    /// From the page's space to view points; absent while it is not known how the page lies. A page that is
    /// visible and drawn is known.
    std::optional<QTransform> pageToView(int page) const;

    /// What the user or a program has selected. Absent when nothing is, and for as long as the text of a
    /// selection over many pages is still being read.
    const std::optional<PDFSelection>& currentSelection() const;
    /// Takes a selection of the shown document; that of another one counts as none. Animated, it is brought
    /// into view and shown to the eye by a short movement.
    void setCurrentSelection(std::optional<PDFSelection> selection, bool animate = false);
    /// Brings what is selected into view with some room around it, as soon as it is known where it lies, and
    /// makes its page the current one. Smooth over short distances; what is in view stays where it is.
    void scrollSelectionToVisible();
    void clearSelection();
    void selectAll();
    /// Copies the selected text to the clipboard, as soon as it is read.
    void copySelection();

    /// Texts that are marked beside the selection, such as all matches of a search, in the order of the
    /// document. What is selected of them looks like the selection.
    const std::vector<TextMatch>& highlightedSelections() const;
    /// Those of another document count as none.
    void setHighlightedSelections(const std::vector<PDFSelection>& selections);
    /// Adds what a search finds as it comes in, see PDFDocument::beginFindString().
    void addHighlightedMatches(const std::vector<TextMatch>& matches);

    /// To be called when annotations or form fields of the page look different now. What is on the screen is
    /// replaced when it is drawn; the page's content is not drawn anew.
    void refreshAnnotations(int page);

    /// To be called when the page looks or lies different now, such as after it was turned. It is read, laid
    /// out and drawn anew; until then the screen shows it as it was.
    void refreshPage(int page);

    /// Hands a form field that is being edited to the document, and calls the function when the document has
    /// all that was entered; to be waited for before it is saved. What the document refuses stays in its
    /// editor, marked, and the user is told.
    void finishEditing(std::function<void()> then);

    /// True while the user has entered something into a form field that the document does not have, because
    /// it is still being edited, is on its way or was refused.
    bool hasUnfinishedEdits() const;

    // The parts of the view, for those who speak for it.
    const PageReader& pageReader() const { return *m_reader; }
    TextSelector& textSelector() { return *m_selector; }
    const LinkFollower& linkFollower() const { return *m_links; }
    TextRevealer& textRevealer() { return *m_revealer; }

    QSize sizeHint() const override;

Q_SIGNALS:
    void documentChanged();
    void pageChanged();
    void scaleChanged();
    void selectionChanged();
    /// A link to an address of the web or of somebody's mail was followed. The view leaves it at that:
    /// whoever listens shows where it leads and opens it.
    void addressFollowed(const QUrl& address);
    /// Pages stand elsewhere in the view now, or have another size.
    void pagesMoved();
    /// A form field has another value now.
    void formFilled();
    /// Annotations of the page look different, see refreshAnnotations().
    void annotationsOutdated(int page);
    /// The page looks or lies different, see refreshPage().
    void pageOutdated(int page);
    /// After refreshAnnotations(): the page is on the screen as it is now.
    void annotationsRefreshed(int page);
    /// The page cannot be shown, see pageFailure().
    void pageFailed(int page);
    /// The first time that the visible pages of a document are on the screen, sharp or not; at once for a
    /// document without pages.
    void firstPagesShown();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    bool viewportEvent(QEvent* event) override;

private:
    void paintText(QPainter& painter, const QRectF& exposed);
    void paintFocus(QPainter& painter) const;
    void takeResults();
    void take(const TileRenderer::PageSized& result);
    void take(const TileRenderer::TileDrawn& result);
    void take(const TileRenderer::PageFailed& result);
    void applyScale();
    void fitWidth();
    /// Brings scroll bars, current page and tiles up to date after the viewport has changed.
    void follow();
    void updateScrollBars();
    void updateCurrentPage();
    void requestTiles();
    void outdateTiles(int page);
    bool isAtHand(const Tile& tile) const;
    bool isInView(const Tile& tile) const;
    void moveTo(qint64 x, qint64 y);
    void stopScrolling();
    /// Brings the place that was gone to into view, once it is known where that is.
    void arrive();
    void goAlong(std::vector<PDFDestination>& way, std::vector<PDFDestination>& wayBack);
    void remember(std::vector<PDFDestination>& places) const;
    bool showHint(const QHelpEvent& event) const;
    void updateDevicePixelRatio();
    void announceFirstPages();

    ShownDocument m_shown;
    PageViewport m_viewport;
    TileCache m_cache;
    /// With the reasons, for the user.
    std::map<int, QString> m_failedPages;
    /// Pages of which the pictures at hand show another layout than the one to come.
    std::set<int> m_outdatedPages;
    std::map<int, QTransform> m_pageToDisplay;
    /// Of these there is no small picture.
    std::set<int> m_picturePages;
    double m_fallbackScale = 0.0;
    double m_scaleFactor = 1.0;
    double m_devicePixelRatio = 1.0;
    bool m_autoScales = false;
    int m_fittedPage = 0;
    int m_currentPage = -1;
    ScrollDirection m_direction = ScrollDirection::down;
    /// Device pixels per step of the scroll bars, more than 1 only where the pixels exceed their range.
    qint64 m_barUnit = 1;
    bool m_isMovingBars = false;
    bool m_hasShownPages = true;
    /// The keyboard came here by a key, so the user needs to see where it is.
    bool m_showsFocus = false;
    ScrollAnimation* m_scrolling;
    /// Called by the renderer.
    const std::unique_ptr<Waker> m_waker;
    /// Where the view is to go when it is known how that page lies.
    std::optional<PDFDestination> m_arrival;
    std::vector<PDFDestination> m_placesBefore;
    std::vector<PDFDestination> m_placesAfter;
    std::unique_ptr<PDFViewInput> m_input;
    std::unique_ptr<FormFiller> m_forms;
    std::unique_ptr<PageReader> m_reader;
    std::unique_ptr<TextSelector> m_selector;
    std::unique_ptr<LinkFollower> m_links;
    std::unique_ptr<HighlightedSelections> m_highlights;
    std::unique_ptr<TextRevealer> m_revealer;
    std::unique_ptr<SelectionEmphasis> m_emphasis;
    std::unique_ptr<KeyboardSelector> m_keyboard;
    std::unique_ptr<ViewAnnouncer> m_announcer;
};

} // namespace pdf
