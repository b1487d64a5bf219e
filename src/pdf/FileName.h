// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QUrl>

// Names of files are bytes, and those in old archives are not always UTF-8. As text each byte that is no part
// of a UTF-8 character is a low surrogate U+DC80 to U+DCFF, which no valid text has by itself, so that every
// name survives the way through text and back. Such names mean nothing to Qt, which would put a question mark
// there; and a relative name that begins with a colon is not a file at all to Qt. Files that somebody named
// are therefore opened by the bytes. All functions may be called from any thread.
namespace pdf {

/// The name as text; see above.
QString fileNameFromBytes(QByteArrayView bytes);

/// The name as the system knows it.
QByteArray bytesOfFileName(const QString& name);

/// The name as it can be shown or written anywhere: the bytes that are no UTF-8 as \xE9.
QString printableFileName(const QString& name);

/// The path from the root: a relative one begins at the process's current folder. "." and ".." are resolved
/// in the text.
QString absoluteFilePath(const QString& path);

/// The URL of a local file; bytes that are no UTF-8 are kept in their percent-encoding.
QUrl fileURL(const QString& path);

/// The last part of the URL's path, as it can be shown.
QString printableFileName(const QUrl& url);

/// The path of a local file's URL, with the bytes that its percent-encoding names; empty for other URLs.
QString filePath(const QUrl& url);

} // namespace pdf
