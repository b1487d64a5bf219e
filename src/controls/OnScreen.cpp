// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/OnScreen.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QWidget>
#include <QWindow>

#include <utility>

namespace quillo {
namespace {

bool isOnScreen(const QWidget& widget)
{
    const QWindow* window = widget.window()->windowHandle();
    return window && window->isExposed();
}

/// Looks at the whole application's events, since the widget may still come into another window.
class ScreenWatcher : public QObject
{
public:
    ScreenWatcher(QWidget* widget, QObject* context, std::function<void()> function)
        : QObject(context)
        , m_widget(widget)
        , m_function(std::move(function))
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        // The window is exposed when the event has been dealt with.
        if (event->type() == QEvent::Expose)
            QMetaObject::invokeMethod(
                this, [this] { check(); }, Qt::QueuedConnection);
        return false;
    }

private:
    void check()
    {
        if (m_widget && !isOnScreen(*m_widget))
            return;
        QCoreApplication::instance()->removeEventFilter(this);
        deleteLater();
        if (const auto function = std::exchange(m_function, nullptr); function && m_widget)
            function();
    }

    const QPointer<QWidget> m_widget;
    std::function<void()> m_function;
};

} // namespace

void whenOnScreen(QWidget* widget, QObject* context, std::function<void()> function)
{
    if (isOnScreen(*widget))
        function();
    else
        new ScreenWatcher(widget, context, std::move(function));
}

} // namespace quillo
