// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFLink.h"

#include <QObject>
#include <QRectF>
#include <QString>

#include <optional>

class QKeyEvent;
class QMouseEvent;
class QPainter;
class QUrl;

namespace pdf {

class PDFView;
class PageReader;

/// Follows the links on the pages of a view: with the mouse, and with the Tab and Return keys. A link within
/// the document goes there; one to an address is only reported, since whoever shows the view decides what
/// leaves the program. Inert links are no links for the user. Main thread.
class LinkFollower : public QObject
{
    Q_OBJECT

public:
    LinkFollower(PDFView& view, PageReader& reader);

    /// Marks the link that has the keyboard. The painter's unit is the view point, its origin the viewport's
    /// upper left.
    void paint(QPainter& painter) const;

    /// The text under the link may be meant as well, until the button is released.
    void mousePress(const QMouseEvent& event);
    // True when the event was meant for a link.
    bool mouseMove(const QMouseEvent& event);
    bool mouseRelease(const QMouseEvent& event);
    bool keyPress(const QKeyEvent& event);

    /// Gives the keyboard to the next of the links on the visible pages, or to the one before. False when
    /// there is none.
    bool walk(bool forward);
    bool hasKeyboard() const { return m_current.has_value(); }
    void dropKeyboard();

    struct Hint
    {
        /// Where the link leads; empty where there is none.
        QString text;
        /// The link, in view points.
        QRectF area;
    };
    Hint hintAt(QPointF viewPoint) const;
    /// Of the link that has the keyboard.
    Hint currentHint() const;

Q_SIGNALS:
    /// Another link has the keyboard, or none.
    void keyboardMoved();
    /// A link to an address of the web or of somebody's mail was followed.
    void addressFollowed(const QUrl& address);

private:
    struct Place
    {
        int page = 0;
        std::size_t index = 0;
        friend bool operator==(const Place&, const Place&) = default;
    };

    Hint hint(const Place& place) const;
    std::optional<Place> placeAt(QPointF viewPoint) const;
    /// Null when the page is not at hand.
    const PDFLink* link(const Place& place) const;
    std::optional<QRectF> area(const Place& place) const;
    std::vector<Place> visibleLinks() const;
    std::optional<Place> firstToWalkTo(const std::vector<Place>& links, bool forward) const;
    void setCurrent(std::optional<Place> place);
    void follow(const Place& place);

    PDFView& m_view;
    PageReader& m_reader;
    std::optional<Place> m_pressed;
    QPointF m_pressPoint;
    /// The link that has the keyboard.
    std::optional<Place> m_current;
};

} // namespace pdf
