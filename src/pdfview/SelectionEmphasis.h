// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QObject>
#include <QPixmap>
#include <QRectF>
#include <QVariantAnimation>

class QPainter;
class QPainterPath;

namespace pdf {

class PDFView;
class TextMarker;
class TextRevealer;
class TextSelector;
class PageReader;

/// Draws the eye to what has been selected: a large picture of it appears, shrinks onto its place and fades
/// away. Waits until the text is in view and sharp. Main thread.
class SelectionEmphasis : public QObject
{
    Q_OBJECT

public:
    SelectionEmphasis(
        PDFView& view, const PageReader& reader, const TextSelector& selector, const TextRevealer& revealer);

    /// Nothing happens where the system wants no animations.
    void begin();
    void stop();
    bool isRunning() const { return m_progress.state() == QAbstractAnimation::Running; }

    /// The painter's unit is the view point, its origin the viewport's upper left.
    void paint(QPainter& painter);

private:
    void start();
    /// The selected text of the visible pages, in view points.
    QPainterPath outline() const;
    void takePicture(const QPainterPath& outline);
    /// Where the picture is at this moment, in view points.
    QRectF place() const;
    void update();

    PDFView& m_view;
    const PageReader& m_reader;
    const TextSelector& m_selector;
    const TextRevealer& m_revealer;
    bool m_isAwaited = false;
    QVariantAnimation m_progress;
    QPixmap m_picture;
    /// Where the picture comes to rest, measured from the upper left of a page, in view points.
    QRectF m_rest;
    int m_page = 0;
    QRectF m_painted;
};

} // namespace pdf
