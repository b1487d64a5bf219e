// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextRange.h"

#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QTimer>

#include <optional>

namespace pdf {

class PDFView;
class PageReader;
class ScrollAnimation;

/// Brings text into view: smoothly where it is near, at once where it is far, and a moment later where its
/// page has to be read first. Whoever scrolls meanwhile ends it. Main thread.
class TextRevealer : public QObject
{
    Q_OBJECT

public:
    /// What the text has around it when it had to be brought into view.
    enum class Room { little, much };

    TextRevealer(PDFView& view, PageReader& reader, ScrollAnimation& scrolling);

    /// An empty range is a place between two characters. Of a text that is larger than the view its first
    /// line is brought there. What is in view stays where it is.
    void reveal(int page, TextRange range, Room room);
    void stop();

    bool isUnderWay() const { return m_goal && !m_goal->isReached; }
    /// True while the page is being brought into view, and on until the program's next event. To go to that
    /// page means to let this happen.
    bool isBringing(int page) const { return m_goal && m_goal->page == page; }

private:
    struct Goal
    {
        int page = 0;
        TextRange range;
        Room room = Room::little;
        bool isFar = false;
        int moves = 0;
        bool isReached = false;
    };

    void proceed();
    /// The place of the text in the viewport, in view points; empty where the page does not have it. Absent
    /// while that is not known.
    std::optional<QRectF> place() const;
    QPointF wayTo(const QRectF& place) const;
    void move(QPointF distance);

    PDFView& m_view;
    PageReader& m_reader;
    ScrollAnimation& m_scrolling;
    std::optional<Goal> m_goal;
    QTimer m_end;
};

} // namespace pdf
