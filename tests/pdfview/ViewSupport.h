// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/PDFView.h"
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

#include <QColor>

#include <memory>

namespace pdf {

/// A page of one colour.
void addColouredPage(
    PDFWriter& writer, QColor color, QSize size = {300, 400}, const QByteArray& entries = {});

/// The colours of pages that a test can tell apart, in turn: the page's number decides.
QColor colorOfPage(int page);

/// A document of pages of these colours.
QByteArray colouredDocument(int pageCount, QSize size = {300, 400});

/// A page whose drawing takes far longer than any test waits for.
void addEndlessPage(PDFWriter& writer);

/// A page, 400 points by 400, with a black square of 200 points at its lower left, an annotation that takes
/// longer to draw than a view needs to be refreshed.
void addPageWithSlowAnnotation(PDFWriter& writer);

/// The largest difference of a colour of a pixel, of 255; 255 for pictures of different sizes.
int largestDifference(const QImage& a, const QImage& b);

/// Slanted edges are smoothed in 16 steps, which may be rounded differently in a tile and in the whole page.
constexpr int seamTolerance = 2 * 16;

/// A view in a window, on documents made by the test.
class PDFViewFixture : public testing::Test
{
protected:
    /// Opens the file as a view takes it.
    static ShownDocument opened(const QString& path);
    ShownDocument documentOf(const QByteArray& bytes);

    /// Shows the document and waits until its first page is on the screen.
    void show(const QByteArray& bytes, QSize size = {400, 500});
    void show(const ShownDocument& document, QSize size = {400, 500});

    /// What is painted at a place of the viewport, in view points.
    QColor colorAt(QPointF place);
    /// Waits until it is this colour.
    bool becomes(QPointF place, QColor color);
    bool isVisible(int page);

    TestFolder m_folder;
    std::unique_ptr<PDFView> m_view;
};

} // namespace pdf
