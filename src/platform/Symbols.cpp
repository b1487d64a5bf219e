// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/Symbols.h"

#include "platform/Theme.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <cmath>

namespace quillo::Symbols {
namespace {

class SymbolIconEngine : public QIconEngine
{
public:
    explicit SymbolIconEngine(const QString& name)
        : m_name(name)
    {}

    QIconEngine* clone() const override { return new SymbolIconEngine(m_name); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const double ratio = painter->device()->devicePixelRatioF();
        const int side = std::min(rect.width(), rect.height());
        const QPoint corner = rect.center() - QPoint(side - 1, side - 1) / 2;
        painter->drawPixmap(corner, Symbols::pixmap(m_name, side, color(mode), ratio));
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal scale) override
    {
        const double ratio = std::max(scale, 1.0);
        const int side = static_cast<int>(std::lround(std::min(size.width(), size.height()) / ratio));
        return Symbols::pixmap(m_name, side, color(mode), ratio);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

private:
    static QColor color(QIcon::Mode mode)
    {
        const bool isDisabled = mode == QIcon::Disabled;
        return Theme::current().color(isDisabled ? ThemeColor::secondaryText : ThemeColor::primaryText);
    }

    QString m_name;
};

} // namespace

QPixmap pixmap(QStringView name, int side, const QColor& color, double devicePixelRatio)
{
    const int pixels = static_cast<int>(std::lround(side * devicePixelRatio));
    const QString key =
        QStringLiteral("symbol %1 %2 %3 %4").arg(name).arg(pixels).arg(devicePixelRatio).arg(color.rgba());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;

    QFile file(QStringLiteral(":/symbols/%1.svg").arg(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QSvgRenderer renderer(file.readAll().replace("currentColor", color.name().toLatin1()));
    pixmap = QPixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    painter.end();
    pixmap.setDevicePixelRatio(devicePixelRatio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

QIcon icon(QStringView name)
{
    return QIcon(new SymbolIconEngine(name.toString()));
}

} // namespace quillo::Symbols
