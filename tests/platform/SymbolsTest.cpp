// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/Symbols.h"

#include "platform/Theme.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>

namespace quillo {
namespace {

class SymbolDrawingTest : public testing::TestWithParam<QStringView>
{
protected:
    static QByteArray drawing()
    {
        QFile file(QStringLiteral(":/symbols/%1.svg").arg(GetParam()));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

int inkIn(const QImage& picture)
{
    int ink = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ink += picture.pixelColor(x, y).alpha() > 127 ? 1 : 0;
    }
    return ink;
}

TEST_P(SymbolDrawingTest, HasInkInTheColourThatIsAskedFor)
{
    const QImage picture = Symbols::pixmap(GetParam(), 24, QColor(10, 200, 30), 2.0).toImage();
    ASSERT_EQ(picture.size(), QSize(48, 48)) << "there is no drawing of that name";
    EXPECT_GT(inkIn(picture), 30);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor color = picture.pixelColor(x, y);
            if (color.alpha() == 255) {
                ASSERT_EQ(color, QColor(10, 200, 30));
            }
        }
    }
}

TEST_P(SymbolDrawingTest, StaysWithinItsGrid)
{
    const QImage picture = Symbols::pixmap(GetParam(), 96, Qt::black, 1.0).toImage();
    for (int i = 0; i < 96; ++i) {
        for (const QPoint edge : {QPoint(i, 0), QPoint(i, 95), QPoint(0, i), QPoint(95, i)})
            EXPECT_EQ(picture.pixelColor(edge).alpha(), 0) << "ink at " << edge.x() << ", " << edge.y();
    }
}

TEST_P(SymbolDrawingTest, IsDrawnOnTheSharedGridWithTheSharedStroke)
{
    const QByteArray svg = drawing();
    EXPECT_TRUE(svg.contains("viewBox=\"0 0 24 24\"")) << svg.toStdString();
    EXPECT_EQ(svg.count("stroke-width="), 1);
    EXPECT_TRUE(svg.contains("stroke-width=\"1.75\""));
    EXPECT_TRUE(svg.contains("stroke-linecap=\"round\""));
    EXPECT_TRUE(svg.contains("stroke-linejoin=\"round\""));
    EXPECT_FALSE(svg.contains('#')) << "a colour of its own cannot be tinted";
}

INSTANTIATE_TEST_SUITE_P(
    Symbols, SymbolDrawingTest, testing::ValuesIn(Symbol::all),
    [](const auto& parameter) { return parameter.param.toString().remove(QLatin1Char('.')).toStdString(); });

TEST(SymbolsTest, HasANameForEveryDrawing)
{
    const QStringList files = QDir(QStringLiteral(":/symbols")).entryList({QStringLiteral("*.svg")});
    EXPECT_EQ(files.size(), qsizetype(Symbol::all.size()));
    for (const QString& file : files) {
        const QString name = file.chopped(4);
        EXPECT_NE(std::find(Symbol::all.begin(), Symbol::all.end(), QStringView(name)), Symbol::all.end())
            << name.toStdString();
    }
}

TEST(SymbolsTest, HasAsManyPixelsAsTheScreen)
{
    const QPixmap symbol = Symbols::pixmap(Symbol::doc, 18, Qt::black, 1.5);
    EXPECT_EQ(symbol.size(), QSize(27, 27));
    EXPECT_EQ(symbol.deviceIndependentSize(), QSizeF(18, 18));
}

TEST(SymbolsTest, GivesNothingForAnUnknownName)
{
    EXPECT_TRUE(Symbols::pixmap(u"no.such.symbol", 18, Qt::black, 1.0).isNull());
}

TEST(SymbolsTest, TintsIconsByTheTheme)
{
    const auto colorOfIcon = [] {
        const QImage picture = Symbols::icon(Symbol::docFill).pixmap(32, 32).toImage();
        return picture.pixelColor(16, 16);
    };
    Theme::setCurrent(Theme::dark());
    EXPECT_EQ(colorOfIcon(), Theme::dark().color(ThemeColor::primaryText));
    Theme::setCurrent(Theme::light());
    EXPECT_EQ(colorOfIcon(), Theme::light().color(ThemeColor::primaryText));
}

} // namespace
} // namespace quillo
