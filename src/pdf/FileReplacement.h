// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFError.h"
#include "pdf/SourceFile.h"

#include <QString>

#include <memory>
#include <optional>

namespace pdf {

/// Writes a file so that whoever looks finds the old content or the new one, whole, whenever the program or
/// the machine stops. The new content goes into a file of its own beside the target, which takes the target's
/// place by renaming after it has reached the disk. It gets the owner, group and permissions of the file that
/// it replaces, as far as the user may give them; other hard links to that file keep the old content. What a
/// process left behind that was killed while it was writing is removed by the next one.
class FileReplacement
{
public:
    /// Where a path leads: symbolic links are followed, even where they lead to no file yet. Empty for links
    /// in a circle.
    static QString resolved(const QString& path);

    /// Opens the new file. `target` must be resolved. Fails where the target or its folder cannot be written;
    /// a file that nobody may write counts as read-only even for the superuser.
    static Result<std::unique_ptr<FileReplacement>> begin(const QString& target);

    /// Removes the new file unless it has taken the target's place.
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Appends to the new file; false when that fails.
    bool write(const char* data, std::size_t size);
    /// Bytes written so far.
    qint64 position() const { return m_position; }
    /// Throws away what was written so far.
    void restart();
    /// Why writing has failed; absent as long as it has not.
    std::optional<PDFError> error() const;

    /// Puts the new file in the target's place. Where `expected` is given, fails when the target exists and
    /// is in another state.
    std::optional<PDFError> commit(const std::optional<FileIdentity>& expected);
    /// The file that is now there; absent until it has taken the target's place.
    const std::optional<FileIdentity>& installed() const { return m_installed; }

private:
    FileReplacement(const QString& target, const std::optional<struct stat>& replaced);

    bool create();
    bool takeOverAttributes();

    const QString m_target;
    const QString m_folder;
    const std::optional<struct stat> m_replaced;
    QByteArray m_temporary;
    int m_descriptor = -1;
    qint64 m_position = 0;
    int m_error = 0;
    std::optional<FileIdentity> m_installed;
};

} // namespace pdf
