// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QUuid>

namespace quillo {

/// A random UUID as QUuid makes them, but from the process's own generator: the system's, which QUuid asks
/// each time, takes longer than all else about a page or an item. Any thread.
QUuid freshIdentity();

} // namespace quillo
