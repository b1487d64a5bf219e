// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QPdfWriter>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <vector>

class QPainter;

namespace pdf {

/// A PDF file of one page that was drawn with a QPainter.
struct DrawnPage
{
    QByteArray file;
    /// The text on the page, for each piece in one font what its glyphs stand for, in the order in which they
    /// are drawn. Where characters take several glyphs together, some of these stand for nothing. Text that
    /// was not drawn with drawText() is not in it.
    std::vector<QStringList> text;
};

/// The page while it is drawn on. Embeds the fonts as far as they are used.
class PageRecorder : public QPdfWriter
{
public:
    /// The size is in points. The page's file goes to the device.
    PageRecorder(QIODevice* device, const QSizeF& size, int dotsPerInch);

    void addText(QStringList glyphs) { m_text.push_back(std::move(glyphs)); }
    std::vector<QStringList> takeText() { return std::move(m_text); }

private:
    std::vector<QStringList> m_text;
};

/// Draws one line of text in any script with the painter's font and pen. `baseline` is where its left end is,
/// in the painter's coordinates. A PageRecorder is told what is drawn.
void drawText(QPainter& painter, const QPointF& baseline, const QString& text);

} // namespace pdf
