// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ProgramRun.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <vector>

namespace {

/// Strings in the form in which exec takes them.
class StringArray
{
public:
    explicit StringArray(const QStringList& strings)
    {
        for (const QString& string : strings)
            m_bytes.push_back(string.toLocal8Bit());
        for (QByteArray& bytes : m_bytes)
            m_pointers.push_back(bytes.data());
        m_pointers.push_back(nullptr);
    }

    char** data() { return m_pointers.data(); }

private:
    std::vector<QByteArray> m_bytes;
    std::vector<char*> m_pointers;
};

QStringList environmentWith(const QStringList& more)
{
    // Whatever the terminal that the tests run on, reports are this wide.
    QStringList entries = more + words("COLUMNS=80");
    for (char** entry = environ; *entry != nullptr; ++entry)
        entries.append(QString::fromLocal8Bit(*entry));
    // The first of two entries of one name counts.
    return entries;
}

/// False when the process had to be killed.
bool endsInTime(pid_t process, std::chrono::milliseconds patience)
{
    const int handle = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    pollfd descriptor = {handle, POLLIN, 0};
    const bool inTime = poll(&descriptor, 1, static_cast<int>(patience.count())) == 1;
    if (!inTime)
        kill(process, SIGKILL);
    close(handle);
    return inTime;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

} // namespace

ProgramRun runCli(const QStringList& arguments, const ProgramSetting& setting)
{
    const QTemporaryDir folder;
    const QString inputPath = folder.filePath(QStringLiteral("input"));
    const QString outputPath = setting.outputPath.value_or(folder.filePath(QStringLiteral("output")));
    const QString errorPath = folder.filePath(QStringLiteral("errors"));
    QFile input(inputPath);
    EXPECT_TRUE(input.open(QIODevice::WriteOnly));
    input.write(setting.input);
    input.close();

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, qPrintable(inputPath), O_RDONLY, 0);
    constexpr int writing = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, qPrintable(outputPath), writing, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, qPrintable(errorPath), writing, 0600);
    pid_t process = 0;
    StringArray argumentArray(QStringList(QStringLiteral(QUILLO_CLI)) + arguments);
    StringArray environment(environmentWith(setting.environment));
    const int error =
        posix_spawn(&process, QUILLO_CLI, &actions, nullptr, argumentArray.data(), environment.data());
    posix_spawn_file_actions_destroy(&actions);
    EXPECT_EQ(error, 0) << QUILLO_CLI << " cannot be started";
    if (error != 0)
        return {};

    ProgramRun result;
    const bool inTime = endsInTime(process, setting.patience);
    int status = 0;
    rusage usage = {};
    wait4(process, &status, 0, &usage);
    EXPECT_TRUE(inTime) << "quillo-cli does not end within " << setting.patience.count() << " s";
    EXPECT_TRUE(!inTime || WIFEXITED(status)) << "quillo-cli is killed by signal " << WTERMSIG(status);
    if (inTime && WIFEXITED(status))
        result.status = WEXITSTATUS(status);
    const auto milliseconds = [](const timeval& time) {
        return std::chrono::milliseconds(time.tv_sec * 1000 + time.tv_usec / 1000);
    };
    result.cpuTime = milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
    result.peakBytes = qint64{usage.ru_maxrss} * 1024;
    if (!setting.outputPath)
        result.output = contentOf(outputPath);
    result.errors = contentOf(errorPath);
    return result;
}

TerminalRun::TerminalRun(const QStringList& arguments, unsigned short columns, const QStringList& environment)
{
    StringArray argumentArray(QStringList(QStringLiteral(QUILLO_CLI)) + arguments);
    StringArray environmentArray(environmentWith(environment + words("TERM=xterm-256color NO_COLOR=")));
    winsize size = {};
    size.ws_row = 24;
    size.ws_col = columns;
    int programsSide = -1;
    if (openpty(&m_terminal, &programsSide, nullptr, nullptr, &size) != 0) {
        ADD_FAILURE() << "there are no terminals to be had";
        return;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_adddup2(&actions, programsSide, descriptor);
    posix_spawn_file_actions_addclose(&actions, programsSide);
    posix_spawn_file_actions_addclose(&actions, m_terminal);
    const int error =
        posix_spawn(&m_process, QUILLO_CLI, &actions, nullptr, argumentArray.data(), environmentArray.data());
    posix_spawn_file_actions_destroy(&actions);
    close(programsSide);
    EXPECT_EQ(error, 0) << QUILLO_CLI << " cannot be started";
}

TerminalRun::~TerminalRun()
{
    if (m_process > 0 && !m_status) {
        kill(m_process, SIGKILL);
        waitForEnd();
    }
    close(m_terminal);
}

bool TerminalRun::readMore()
{
    constexpr int patience = 30'000;
    pollfd descriptor = {m_terminal, POLLIN, 0};
    std::array<char, 4096> buffer = {};
    // Reading ends with an error once the other side is closed.
    if (poll(&descriptor, 1, patience) != 1) {
        ADD_FAILURE() << "quillo-cli neither writes anything nor ends";
        kill(m_process, SIGKILL);
        return false;
    }
    const ssize_t count = read(m_terminal, buffer.data(), buffer.size());
    m_bytes.append(buffer.data(), count > 0 ? count : 0);
    return count > 0;
}

bool TerminalRun::receives(const QByteArray& text)
{
    while (!m_bytes.contains(text)) {
        if (!readMore())
            return false;
    }
    return true;
}

void TerminalRun::sendSignal(int signal) const
{
    kill(m_process, signal);
}

int TerminalRun::waitForEnd()
{
    while (readMore()) {
    }
    if (!m_status) {
        int status = 0;
        waitpid(m_process, &status, 0);
        m_status = status;
    }
    return *m_status;
}

QByteArray TerminalRun::shown() const
{
    // A terminal gets a carriage return before every line feed.
    QByteArray text = m_bytes;
    text.replace("\r\n", "\n");
    QList<QByteArray> lines = text.split('\n');
    for (QByteArray& line : lines)
        line = line.mid(line.lastIndexOf('\r') + 1);
    return lines.join('\n');
}

QByteArray
runCliOnTerminal(const QStringList& arguments, unsigned short columns, const QStringList& environment)
{
    TerminalRun run(arguments, columns, environment);
    run.waitForEnd();
    return run.shown();
}

QString sample(const char* name)
{
    return QStringLiteral(QUILLO_SOURCE_DIR "/samples/") + QString::fromUtf8(name);
}

QStringList words(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}
