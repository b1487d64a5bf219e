// SPDX-License-Identifier: AGPL-3.0-or-later
// The least that a Qt program can do to get a colour on the screen: the yardstick of the start-up benchmark.

#include <QApplication>
#include <QPainter>
#include <QWidget>

namespace {

class OneColour : public QWidget
{
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter(this).fillRect(rect(), QColor(0x00, 0xA0, 0x50));
    }
};

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    OneColour window;
    window.resize(1200, 800);
    window.show();
    return QApplication::exec();
}
