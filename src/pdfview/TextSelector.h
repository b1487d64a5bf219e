// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/PDFSelection.h"
#include "pdf/TextRange.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointF>
#include <QTimer>

#include <memory>
#include <optional>

class QMouseEvent;

namespace pdf {

class JobQueue;
class PDFView;
class PageReader;
class TextShift;

/// Selects text in a view: what is dragged over, a word by a double click, a line by a triple one, and more
/// of it with Shift. What is selected is known at once as two places in the document; the selection with its
/// text follows a moment later where the pages between them are not at hand. Main thread.
class TextSelector : public QObject
{
    Q_OBJECT

public:
    TextSelector(PDFView& view, PageReader& reader);
    ~TextSelector() override;

    /// Absent when nothing is selected, and while the selected text is still being read.
    const std::optional<PDFSelection>& selection() const { return m_selection; }
    void setSelection(std::optional<PDFSelection> selection);
    /// The text between two places, whichever of them comes first.
    void select(TextPosition from, TextPosition to);
    void selectAll();

    /// Selects nothing; the keyboard goes on from here.
    void placeCaret(TextPosition place);
    /// The end of the selection that moves when more is selected. Where nothing is, the place in the text
    /// that was clicked on; absent when there is none.
    std::optional<TextPosition> movingEnd() const;
    /// Moves that end; without one nothing happens.
    void extendTo(TextPosition place);

    /// True as soon as something is selected, its text at hand or not.
    bool isAnythingSelected() const { return m_selection || m_span; }
    /// What is selected on the page, possibly beyond the end of its text; empty where nothing is.
    TextRange rangeOn(int page) const;
    /// The first page that is selected from, or -1.
    int firstPage() const;

    /// Copies the selected text to the clipboard, as soon as it is at hand.
    void copy();

    // True when the event was meant for the text.
    bool mousePress(const QMouseEvent& event);
    bool mouseMove(const QMouseEvent& event);
    bool mouseRelease(const QMouseEvent& event);

Q_SIGNALS:
    /// selection() is another one.
    void selectionChanged();
    /// rangeOn() is another one.
    void rangeChanged();

private:
    enum class Unit { character, word, line };

    /// Two places in the order of the document.
    struct Span
    {
        TextPosition from;
        TextPosition to;
        friend bool operator==(Span, Span) = default;
    };
    struct PagePoint
    {
        int page = 0;
        /// In page space.
        QPointF point;
    };
    /// What happens between pressing and releasing the button, and on until the pages there are read.
    struct Drag
    {
        Unit unit = Unit::character;
        PagePoint start;
        QPointF pointer;
        bool isMoved = false;
        bool isReleased = false;
    };

    void startDocument();
    /// Selects what was selected where it is now, or nothing where its ends were replaced.
    void followText(int page, const TextShift& shift);
    /// The same for a page whose text is not at hand.
    void followUnread(int page);
    Unit unitOfPress(const QMouseEvent& event);
    std::optional<PagePoint> pagePoint(QPointF viewPoint) const;
    /// The character, word or line at a point; absent while the page is not read.
    std::optional<Span> unitAt(const PagePoint& place, Unit unit) const;
    bool isOverText(QPointF viewPoint) const;
    void followDrag();
    /// False while a page that matters is not read.
    bool extendToPointer();
    void scrollWithDrag();
    /// Ends what the mouse does.
    void endDrag();
    /// What is selected, its text at hand or not.
    std::optional<Span> selectedSpan() const { return m_span || !m_selection ? m_span : m_anchor; }
    /// True when the selection was extended towards the beginning of the document.
    bool isBackwards() const;
    void setSpan(std::optional<Span> span);
    void readSelection();
    std::optional<PDFSelection> selectionAtHand(const Span& span) const;
    void takeSelection(std::optional<PDFSelection> selection);
    void offerToMiddleButton();

    PDFView& m_view;
    PageReader& m_reader;
    std::unique_ptr<JobQueue> m_jobs;
    /// What is being read; a job at a time.
    std::optional<Cancellation> m_reading;
    std::optional<Span> m_span;
    std::optional<PDFSelection> m_selection;
    /// What the pointer extends; it stays while the other end moves.
    std::optional<Span> m_anchor;
    /// Where the keyboard goes on while nothing is selected.
    std::optional<TextPosition> m_caret;
    std::optional<Drag> m_drag;
    QTimer m_autoScroll;
    QElapsedTimer m_sinceDoubleClick;
    QPointF m_doubleClick;
    bool m_isUsersOwn = false;
    bool m_copiesWhenRead = false;
};

} // namespace pdf
