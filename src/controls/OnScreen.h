// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <functional>

class QObject;
class QWidget;

namespace quillo {

/// Calls the function once the widget's window is on the screen, at once where it is. Before that the window
/// has no place, so a dialog over it would find none either. The call is dropped when the widget or the
/// context is gone.
void whenOnScreen(QWidget* widget, QObject* context, std::function<void()> function);

} // namespace quillo
