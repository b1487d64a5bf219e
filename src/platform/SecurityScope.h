// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QUrl>

namespace quillo {

/// Takes up the access to a file that the user has given to this program alone. True when the file came
/// that way: on this system through the document portal, which hands single files to a sandboxed program.
/// Access is never given back while the process runs.
bool startAccessingSecurityScopedResource(const QUrl& url);

} // namespace quillo
