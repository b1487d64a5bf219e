// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFAnnotation.h"

#include "pdf/DrawnPage.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

namespace pdf {
namespace {

constexpr double stampFrame = 1.5;

QString nameOf(PDFAnnotation::Subtype subtype)
{
    switch (subtype) {
    case PDFAnnotation::Subtype::freeText:
        return QStringLiteral("FreeText");
    case PDFAnnotation::Subtype::widget:
        return QStringLiteral("Widget");
    case PDFAnnotation::Subtype::stamp:
    case PDFAnnotation::Subtype::other:
        break;
    }
    return QStringLiteral("Stamp");
}

/// The font as paper needs it: without the rounding to pixels that a screen asks for.
QFont forPaper(QFont font)
{
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

/// A device whose pixels are points.
const QPaintDevice& pointDevice()
{
    static const auto* const device = [] {
        constexpr int dotsPerMetre = 2835;
        auto* image = new QImage(1, 1, QImage::Format_RGB32);
        image->setDotsPerMeterX(dotsPerMetre);
        image->setDotsPerMeterY(dotsPerMetre);
        return image;
    }();
    return *device;
}

/// Draws the lines half way between the area's top and bottom, wherever that takes them.
void drawLines(QPainter& painter, const QRectF& area, Qt::AlignmentFlag alignment, const QStringList& lines)
{
    const QFontMetricsF metrics(painter.font(), painter.device());
    const double height =
        metrics.lineSpacing() * static_cast<double>(lines.size() - 1) + metrics.ascent() + metrics.descent();
    double baseline = area.center().y() - height / 2.0 + metrics.ascent();
    for (const QString& line : lines) {
        const double room = area.width() - metrics.horizontalAdvance(line);
        double x = area.left();
        if (alignment == Qt::AlignHCenter)
            x += room / 2.0;
        else if (alignment == Qt::AlignRight)
            x += room;
        drawText(painter, QPointF(x, baseline), line);
        baseline += metrics.lineSpacing();
    }
}

} // namespace

PDFAnnotation::PDFAnnotation(const QRectF& bounds, Subtype subtype)
    : m_type(nameOf(subtype))
    , m_subtype(subtype)
    , m_isOwn(true)
{
    Q_ASSERT(subtype != Subtype::other);
    m_properties.bounds = bounds.normalized();
}

PDFAnnotation::PDFAnnotation(const QString& type, Subtype subtype)
    : m_type(type)
    , m_subtype(subtype)
    , m_isOwn(false)
{}

PDFAnnotation::~PDFAnnotation() = default;

template <typename Value>
Value PDFAnnotation::get(Value Properties::*member) const
{
    const std::lock_guard lock(m_mutex);
    return m_properties.*member;
}

template <typename Value>
void PDFAnnotation::set(Value Properties::*member, const Value& value, bool Changes::*change)
{
    std::shared_ptr<PDFDocument> document;
    int page = -1;
    {
        const std::lock_guard lock(m_mutex);
        if (m_properties.*member == value)
            return;
        m_properties.*member = value;
        m_changes.*change = true;
        page = m_pageIndex;
        if (page >= 0)
            document = m_document.lock();
    }
    if (document)
        document->noteChange(shared_from_this(), page);
}

std::shared_ptr<PDFPage> PDFAnnotation::page() const
{
    std::shared_ptr<PDFDocument> document;
    int index = -1;
    {
        const std::lock_guard lock(m_mutex);
        document = m_document.lock();
        index = m_pageIndex;
    }
    return document && index >= 0 ? document->page(index) : nullptr;
}

QRectF PDFAnnotation::bounds() const
{
    return get(&Properties::bounds);
}

void PDFAnnotation::setBounds(const QRectF& bounds)
{
    set(&Properties::bounds, bounds.normalized(), &Changes::bounds);
}

QString PDFAnnotation::contents() const
{
    return get(&Properties::contents);
}

void PDFAnnotation::setContents(const QString& contents)
{
    set(&Properties::contents, contents);
}

QFont PDFAnnotation::font() const
{
    return get(&Properties::font);
}

void PDFAnnotation::setFont(const QFont& font)
{
    set(&Properties::font, font);
}

QColor PDFAnnotation::fontColor() const
{
    return get(&Properties::fontColor);
}

void PDFAnnotation::setFontColor(const QColor& color)
{
    set(&Properties::fontColor, color);
}

QColor PDFAnnotation::color() const
{
    return get(&Properties::color);
}

void PDFAnnotation::setColor(const QColor& color)
{
    set(&Properties::color, color);
}

Qt::AlignmentFlag PDFAnnotation::alignment() const
{
    return get(&Properties::alignment);
}

void PDFAnnotation::setAlignment(Qt::AlignmentFlag alignment)
{
    set(&Properties::alignment, alignment);
}

QString PDFAnnotation::widgetStringValue() const
{
    return get(&Properties::widgetStringValue);
}

void PDFAnnotation::setWidgetStringValue(const QString& value)
{
    set(&Properties::widgetStringValue, value, &Changes::value);
}

QColor PDFAnnotation::backgroundColor() const
{
    return get(&Properties::backgroundColor);
}

void PDFAnnotation::setBackgroundColor(const QColor& color)
{
    set(&Properties::backgroundColor, color);
}

bool PDFAnnotation::isReadOnly() const
{
    return get(&Properties::isReadOnly);
}

void PDFAnnotation::setReadOnly(bool isReadOnly)
{
    set(&Properties::isReadOnly, isReadOnly, &Changes::isReadOnly);
}

void PDFAnnotation::setValue(int value, PDFAnnotationKey key)
{
    switch (key) {
    case PDFAnnotationKey::borderStyle:
        set(&Properties::borderWidth, std::optional(value));
        break;
    }
}

QSizeF PDFAnnotation::textSize(const QString& text, const QFont& font)
{
    return QFontMetricsF(forPaper(font), &pointDevice()).size(0, text);
}

void PDFAnnotation::draw(QPainter& painter, const QSizeF& size) const
{
    Properties properties;
    {
        const std::lock_guard lock(m_mutex);
        properties = m_properties;
    }
    const QRectF area(QPointF(), size);
    painter.setFont(forPaper(properties.font));
    painter.setPen(properties.fontColor);
    switch (m_subtype) {
    case Subtype::freeText:
        painter.fillRect(area, properties.color);
        drawLines(painter, area, properties.alignment, properties.contents.split(u'\n'));
        break;
    case Subtype::stamp:
        painter.setPen(QPen(properties.fontColor, stampFrame));
        painter.drawRect(area.adjusted(stampFrame, stampFrame, -stampFrame, -stampFrame));
        drawLines(painter, area, Qt::AlignHCenter, properties.contents.split(u'\n'));
        break;
    case Subtype::widget:
    case Subtype::other:
        break;
    }
}

} // namespace pdf
