// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFError.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <sys/stat.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

namespace pdf {

/// What tells one state of a file from another without reading it.
struct FileIdentity
{
    dev_t device = 0;
    ino_t node = 0;
    off_t size = 0;
    timespec modified = {};

    static FileIdentity of(const struct stat& status);
    /// Absent when there is no such file.
    static std::optional<FileIdentity> of(const QString& path);

    bool operator==(const FileIdentity& other) const;
};

/// The file that a document was read from. It stays open, so its content is there as long as the document is,
/// even after the file was replaced or removed. A program that writes into the file itself could still take
/// the content away; preserve() guards against that. Safe from any thread.
class SourceFile : public std::enable_shared_from_this<SourceFile>
{
public:
    /// Refuses whatever is not a regular file that can be read and has something in it.
    static Result<std::shared_ptr<SourceFile>> open(const QString& path);
    ~SourceFile();
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;

    /// The file as it was opened.
    const FileIdentity& identity() const { return m_identity; }
    qint64 size() const { return m_identity.size; }

    /// Reads at most `length` bytes; 0 at the end, -1 on an error.
    qint64 read(qint64 offset, char* buffer, qint64 length) const;

    /// Copies the content away, unless it is bigger than is sensible: a small file at once, a big one in the
    /// background. Only the first call does something.
    void preserve();

    /// True while read() gives what was opened, rather than what somebody wrote into the file since. Waits
    /// for a copy that is being made.
    bool isIntact() const;

    /// The same for readers, who can live with less certainty and must not wait: a file that somebody touched
    /// or added to is still readable. One that was cut short or overwritten by another is not; this is told
    /// by its size and both of its ends.
    bool isReadable() const;

private:
    SourceFile(std::unique_ptr<QFile> file, const FileIdentity& identity);

    bool isUntouched() const;
    QByteArray ends() const;
    void copy();

    const std::unique_ptr<QFile> m_file;
    const FileIdentity m_identity;
    /// As they were when the file was opened.
    const QByteArray m_ends;

    std::once_flag m_preserving;
    /// Held while a copy is being made.
    mutable std::mutex m_copying;
    /// The copy's descriptor, or -1.
    std::atomic<int> m_copy = -1;
};

} // namespace pdf
