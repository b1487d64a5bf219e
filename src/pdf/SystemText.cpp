// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/SystemText.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>

#include <cmath>

namespace pdf {
namespace {

// Pixels of a font as it is measured, and of an inch as it is drawn: large enough for rounding not to matter.
constexpr int measuredSize = 1000;
constexpr int pixelsPerInch = 4800;
constexpr double pointsPerInch = 72.0;

QFont fontLike(const QString& name)
{
    const auto has = [&](const char* part) {
        return name.contains(QLatin1String(part), Qt::CaseInsensitive);
    };
    QFont font;
    if (has("Cour") || has("Mono")) {
        font.setFamilies({QStringLiteral("monospace")});
        font.setStyleHint(QFont::Monospace);
    } else if (has("Times") || has("Roman") || (has("Serif") && !has("Sans"))) {
        font.setFamilies({QStringLiteral("serif")});
        font.setStyleHint(QFont::Serif);
    } else {
        font.setFamilies(
            {QStringLiteral("Liberation Sans"), QStringLiteral("Arial"), QStringLiteral("sans-serif")});
        font.setStyleHint(QFont::SansSerif);
    }
    font.setBold(has("Bold"));
    font.setItalic(has("Italic") || has("Oblique"));
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setPixelSize(measuredSize);
    return font;
}

} // namespace

SystemFont::SystemFont(const QString& fontName)
    : m_font(fontLike(fontName))
{}

bool SystemFont::isAvailable()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

double SystemFont::width(QStringView text) const
{
    return QFontMetricsF(m_font).horizontalAdvance(text.toString()) / measuredSize;
}

DrawnPage
SystemFont::draw(const std::vector<TextAt>& lines, double size, const QColor& colour, QSizeF pageSize) const
{
    constexpr double scale = pixelsPerInch / pointsPerInch;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    PageRecorder page(&buffer, pageSize, pixelsPerInch);
    QFont font = m_font;
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(size * scale))));
    QPainter painter(&page);
    painter.setFont(font);
    painter.setPen(colour);
    for (const TextAt& line : lines)
        drawText(
            painter, QPointF(line.baseline.x(), pageSize.height() - line.baseline.y()) * scale, line.text);
    painter.end();
    return {buffer.data(), page.takeText()};
}

} // namespace pdf
