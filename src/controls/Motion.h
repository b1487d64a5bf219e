// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

class QWidget;

namespace quillo {

/// How long something in the widget's window takes to move, in milliseconds: 0 where the system asks for
/// reduced motion.
int motionDuration(const QWidget& widget);

} // namespace quillo
