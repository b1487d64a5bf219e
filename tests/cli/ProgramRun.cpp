// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ProgramRun.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <utility>
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

QByteArray
runCliOnTerminal(const QStringList& arguments, unsigned short columns, const QStringList& environment)
{
    StringArray argumentArray(QStringList(QStringLiteral(QUILLO_CLI)) + arguments);
    StringArray environmentArray(environmentWith(environment + words("TERM=xterm-256color NO_COLOR=")));
    winsize size = {};
    size.ws_row = 24;
    size.ws_col = columns;
    int terminal = -1;
    int programsSide = -1;
    if (openpty(&terminal, &programsSide, nullptr, nullptr, &size) != 0) {
        ADD_FAILURE() << "there are no terminals to be had";
        return {};
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_adddup2(&actions, programsSide, descriptor);
    posix_spawn_file_actions_addclose(&actions, programsSide);
    posix_spawn_file_actions_addclose(&actions, terminal);
    pid_t process = 0;
    const int error =
        posix_spawn(&process, QUILLO_CLI, &actions, nullptr, argumentArray.data(), environmentArray.data());
    posix_spawn_file_actions_destroy(&actions);
    close(programsSide);
    EXPECT_EQ(error, 0) << QUILLO_CLI << " cannot be started";
    if (error != 0)
        return {};
    QByteArray shown;
    std::array<char, 4096> buffer = {};
    // Reading ends with an error once the other side is closed.
    for (ssize_t count = read(terminal, buffer.data(), buffer.size()); count > 0;
         count = read(terminal, buffer.data(), buffer.size()))
        shown.append(buffer.data(), count);
    close(terminal);
    waitpid(process, nullptr, 0);
    // A terminal gets a carriage return before every line feed.
    return shown.replace("\r\n", "\n");
}

QString sample(const char* name)
{
    return QStringLiteral(QUILLO_SOURCE_DIR "/samples/") + QString::fromUtf8(name);
}

QStringList words(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

ProgramRun runShell(const char* script, const QStringList& arguments)
{
    QProcess shell;
    shell.start(
        QStringLiteral("sh"),
        QStringList{QStringLiteral("-c"), QString::fromUtf8(script), QStringLiteral(QUILLO_CLI)} + arguments);
    EXPECT_TRUE(shell.waitForFinished(60'000)) << script;
    ProgramRun result;
    if (shell.exitStatus() == QProcess::NormalExit)
        result.status = shell.exitCode();
    result.output = shell.readAllStandardOutput();
    result.errors = shell.readAllStandardError();
    return result;
}

TerminalSession::TerminalSession(const QStringList& arguments)
{
    StringArray argumentArray(QStringList(QStringLiteral(QUILLO_CLI)) + arguments);
    StringArray environment(environmentWith(words("TERM=dumb")));
    EXPECT_EQ(openpty(&m_terminal, &m_programsSide, nullptr, nullptr, nullptr), 0);
    m_process = fork();
    if (m_process != 0)
        return;
    // Nothing but system calls between fork and exec.
    close(m_terminal);
    if (login_tty(m_programsSide) == 0)
        execve(QUILLO_CLI, argumentArray.data(), environment.data());
    _exit(127);
}

TerminalSession::~TerminalSession()
{
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    close(m_terminal);
    close(m_programsSide);
}

bool TerminalSession::readMore()
{
    pollfd waiting = {m_terminal, POLLIN, 0};
    std::array<char, 4096> buffer = {};
    if (poll(&waiting, 1, 20'000) != 1)
        return false;
    const ssize_t count = read(m_terminal, buffer.data(), buffer.size());
    m_shown.append(buffer.data(), std::max<ssize_t>(count, 0));
    return count > 0;
}

bool TerminalSession::shows(const QByteArray& text, int times)
{
    while (m_shown.count(text) < times) {
        if (!readMore())
            return false;
    }
    return true;
}

void TerminalSession::type(const QByteArray& keys) const
{
    EXPECT_EQ(write(m_terminal, keys.constData(), static_cast<std::size_t>(keys.size())), keys.size());
}

bool TerminalSession::echoes() const
{
    termios setting = {};
    EXPECT_EQ(tcgetattr(m_programsSide, &setting), 0);
    return (setting.c_lflag & ECHO) != 0;
}

std::optional<int> TerminalSession::waitForEnd()
{
    if (!endsInTime(m_process, std::chrono::seconds(20)))
        return std::nullopt;
    int status = 0;
    waitpid(std::exchange(m_process, -1), &status, 0);
    pollfd waiting = {m_terminal, POLLIN, 0};
    while (poll(&waiting, 1, 0) == 1 && readMore()) {
    }
    return status;
}

QByteArray TerminalSession::shown() const
{
    return QByteArray(m_shown).replace("\r\n", "\n");
}
