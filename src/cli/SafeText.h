// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

namespace quillo::cli {

/// The text without anything by which a document could steer the terminal: control characters become the
/// pictures of themselves (an escape is shown as U+241B), those that have none and the ones that turn the
/// direction of writing become U+FFFD. Line feeds and tabs stay; a carriage return before a line feed goes.
QString safeText(QStringView text);

/// The same on one line: every run of white space is one space, and there is none at the ends.
QString safeLine(QStringView text);

/// A name (of a file, of an argument) as it is, but for what safeText() replaces and line feeds; bytes that
/// are no UTF-8 are shown as \xE9.
QString safeName(const QString& name);

} // namespace quillo::cli
