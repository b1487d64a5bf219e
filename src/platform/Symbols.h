// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QStringView>

#include <array>

namespace quillo {

/// The platform's symbols by name. Each is a drawing of one colour that is tinted where it is used and sharp
/// at any size and pixel density.
namespace Symbol {

inline constexpr QStringView arrowClockwise = u"arrow.clockwise";
inline constexpr QStringView arrowsOutward = u"arrow.up.left.and.arrow.down.right";
inline constexpr QStringView book = u"book";
inline constexpr QStringView chevronDown = u"chevron.down";
inline constexpr QStringView chevronLeft = u"chevron.left";
inline constexpr QStringView chevronRight = u"chevron.right";
inline constexpr QStringView doc = u"doc";
inline constexpr QStringView docFill = u"doc.fill";
inline constexpr QStringView docOnClipboard = u"doc.on.clipboard";
inline constexpr QStringView docQuestionmark = u"doc.questionmark";
inline constexpr QStringView docText = u"doc.text";
inline constexpr QStringView docTextMagnifyingglass = u"doc.text.magnifyingglass";
inline constexpr QStringView envelope = u"envelope";
inline constexpr QStringView minusMagnifyingglass = u"minus.magnifyingglass";
inline constexpr QStringView plusMagnifyingglass = u"plus.magnifyingglass";
inline constexpr QStringView sidebarLeft = u"sidebar.left";
inline constexpr QStringView xmark = u"xmark";

/// All of them.
inline constexpr std::array all{
    arrowClockwise,
    arrowsOutward,
    book,
    chevronDown,
    chevronLeft,
    chevronRight,
    doc,
    docFill,
    docOnClipboard,
    docQuestionmark,
    docText,
    docTextMagnifyingglass,
    envelope,
    minusMagnifyingglass,
    plusMagnifyingglass,
    sidebarLeft,
    xmark,
};

} // namespace Symbol

namespace Symbols {

/// The symbol in one colour, with side and device pixel ratio as given (side in device-independent pixels);
/// null when there is no drawing of that name. Main thread.
QPixmap pixmap(QStringView name, int side, const QColor& color, double devicePixelRatio);

/// For menus and other controls of the desktop: the symbol in the primary text colour of the current theme,
/// drawn when it is first painted.
QIcon icon(QStringView name);

} // namespace Symbols
} // namespace quillo
