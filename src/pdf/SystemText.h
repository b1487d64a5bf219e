// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/DrawnPage.h"
#include "pdf/FieldFont.h"

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QSizeF>
#include <QString>

#include <vector>

namespace pdf {

/// A line of text and where its baseline begins: points, origin at the lower left.
struct TextAt
{
    QString text;
    QPointF baseline;
};

/// The system's fonts, for text in any script. Needs an application object with a graphical interface; any
/// thread.
class SystemFont : public FieldFont
{
public:
    /// The family and style come near to the font of this PostScript name.
    explicit SystemFont(const QString& fontName);

    static bool isAvailable();

    /// For measuring; its size means nothing.
    const QFont& font() const { return m_font; }

    double width(QStringView text) const override;

    /// A page of the given size, in points, that shows the lines.
    DrawnPage
    draw(const std::vector<TextAt>& lines, double size, const QColor& colour, QSizeF pageSize) const;

private:
    QFont m_font;
};

} // namespace pdf
