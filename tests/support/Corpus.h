// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QDirIterator>
#include <QString>
#include <QStringList>

// The folder of real files; each of them is a test of its own kind.

/// The files of the folder or of one below it, in a fixed order; none where there is no such folder.
inline QStringList corpusFiles(const QString& folder = {})
{
    QStringList files;
    QDirIterator iterator(
        QDir(QStringLiteral(QUILLO_CORPUS)).filePath(folder), {QStringLiteral("*.pdf")}, QDir::Files,
        QDirIterator::Subdirectories);
    while (iterator.hasNext())
        files.append(iterator.next());
    files.sort();
    return files;
}
