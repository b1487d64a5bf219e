// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/Motion.h"

#include <QStyle>
#include <QWidget>

namespace quillo {
namespace {

constexpr int usualDuration = 250;

} // namespace

int motionDuration(const QWidget& widget)
{
    const bool isReduced =
        widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) == 0;
    return isReduced ? 0 : usualDuration;
}

} // namespace quillo
