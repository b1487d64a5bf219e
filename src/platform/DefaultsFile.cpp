// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/DefaultsFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace quillo {
namespace {

constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
constexpr QFile::Permissions ownerOnlyFolder = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

// A process that holds the lock writes one small file; one that has been stopped in the middle must not keep
// this one from ending.
constexpr std::chrono::milliseconds lockPatience{10'000};
constexpr std::chrono::milliseconds lockPause{5};

class FileDescriptor
{
public:
    FileDescriptor(const QString& path, int flags)
        : m_descriptor(::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC, ownerOnly))
    {}
    ~FileDescriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

// The kernel gives the lock back when the process ends, however it ends.
bool lock(const FileDescriptor& file)
{
    const auto deadline = std::chrono::steady_clock::now() + lockPatience;
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return true; // A file system without locks: every write is still whole.
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(lockPause);
    }
    return true;
}

enum class State { absent, readable, damaged, unavailable };

struct Content
{
    State state = State::absent;
    IniValues values;
};

bool readAll(const FileDescriptor& file, QByteArray& text)
{
    QByteArray block(262'144, Qt::Uninitialized);
    while (true) {
        const ssize_t count = ::read(file.get(), block.data(), static_cast<size_t>(block.size()));
        if (count == 0)
            return true;
        if (count > 0)
            text.append(block.constData(), count);
        else if (errno != EINTR)
            return false;
    }
}

Content readContent(const QString& path)
{
    // Opening a pipe must not wait for somebody at its other end.
    const FileDescriptor file(path, O_RDONLY | O_NONBLOCK);
    if (!file.isOpen()) {
        if (errno == ENOENT)
            return {};
        return {
            errno == EACCES || errno == ELOOP || errno == ENXIO ? State::damaged : State::unavailable, {}};
    }
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0)
        return {State::unavailable, {}};
    if (!S_ISREG(status.st_mode))
        return {State::damaged, {}};
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        ::fchmod(file.get(), ownerOnly);
    QByteArray text;
    if (!readAll(file, text))
        return {State::unavailable, {}};
    std::optional<IniValues> values = parseIni(text);
    if (!values)
        return {State::damaged, {}};
    return {State::readable, *std::move(values)};
}

bool putAside(const QString& path)
{
    QString aside = path + QStringLiteral(".damaged");
    for (int number = 2; QFileInfo(aside).exists() || QFileInfo(aside).isSymLink(); ++number)
        aside = path + QStringLiteral(".damaged-%1").arg(number);
    return std::rename(QFile::encodeName(path).constData(), QFile::encodeName(aside).constData()) == 0;
}

bool writeAll(const FileDescriptor& file, const QByteArray& text)
{
    qsizetype written = 0;
    while (written < text.size()) {
        const ssize_t count =
            ::write(file.get(), text.constData() + written, static_cast<size_t>(text.size() - written));
        if (count < 0 && errno != EINTR)
            return false;
        written += count > 0 ? count : 0;
    }
    return ::fsync(file.get()) == 0;
}

// The lock guards the name of the new file too: what a killed process left under it is written over.
bool replace(const QString& path, const QByteArray& text)
{
    const QString newPath = path + QStringLiteral(".new");
    const QByteArray newName = QFile::encodeName(newPath);
    ::unlink(newName.constData());
    {
        const FileDescriptor file(newPath, O_WRONLY | O_CREAT | O_EXCL);
        if (!file.isOpen())
            return false;
        if (!writeAll(file, text)) {
            ::unlink(newName.constData());
            return false;
        }
    }
    if (std::rename(newName.constData(), QFile::encodeName(path).constData()) != 0) {
        ::unlink(newName.constData());
        return false;
    }
    // The new name is in the folder, so the folder has to reach the disk as well.
    const FileDescriptor folder(QFileInfo(path).path(), O_RDONLY | O_DIRECTORY);
    if (folder.isOpen())
        ::fsync(folder.get());
    return true;
}

bool makeFolder(const QString& path)
{
    const QFileInfo folder(path);
    if (folder.isDir())
        return true;
    return QDir().mkpath(folder.path()) && (QDir().mkdir(path, ownerOnlyFolder) || folder.isDir());
}

// The text that each key has from now on, its own or else the proposed one.
DefaultsProposals agree(DefaultsProposals proposals, IniValues& values)
{
    for (auto& [key, text] : proposals) {
        IniValue& value = values.try_emplace(key, text).first->second;
        if (const auto* own = std::get_if<QString>(&value))
            text = *own;
        else
            value = text;
    }
    return proposals;
}

// A file that is a link stays one; what it points to is replaced.
QString withoutLinks(const QString& path)
{
    const QString target = QFileInfo(path).canonicalFilePath();
    return target.isEmpty() ? path : target;
}

} // namespace

DefaultsFile::DefaultsFile(QString path)
    : m_path(std::move(path))
{}

IniValues DefaultsFile::read() const
{
    return readContent(m_path).values;
}

std::optional<DefaultsProposals>
DefaultsFile::apply(const DefaultsChanges& changes, const DefaultsProposals& proposals) const
{
    if (!makeFolder(QFileInfo(m_path).path()))
        return std::nullopt;
    const FileDescriptor lockFile(m_path + QStringLiteral(".lock"), O_RDWR | O_CREAT);
    if (!lockFile.isOpen() || !lock(lockFile))
        return std::nullopt;
    const QString path = withoutLinks(m_path);
    Content content = readContent(path);
    if (content.state == State::unavailable || (content.state == State::damaged && !putAside(path)))
        return std::nullopt;
    const IniValues before = content.values;
    for (const auto& [key, value] : changes) {
        if (value)
            content.values.insert_or_assign(key, *value);
        else
            content.values.erase(key);
    }
    DefaultsProposals agreed = agree(proposals, content.values);
    if ((content.state != State::readable || content.values != before) &&
        !replace(path, formatIni(content.values)))
        return std::nullopt;
    return agreed;
}

} // namespace quillo
