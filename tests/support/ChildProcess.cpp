// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QProcessEnvironment>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace quillo {
namespace {

std::vector<char*> pointersTo(QList<QByteArray>& strings)
{
    std::vector<char*> pointers;
    pointers.reserve(static_cast<std::size_t>(strings.size()) + 1);
    for (QByteArray& string : strings)
        pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

QList<QByteArray> environmentWith(const ChildProcess::Environment& additions)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : additions)
        environment.insert(name, value);
    QList<QByteArray> result;
    for (const QString& entry : environment.toStringList())
        result.append(QFile::encodeName(entry));
    return result;
}

} // namespace

ChildProcess::ChildProcess(
    const QString& program, const QStringList& arguments, const Environment& environment, Errors errors)
{
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    m_output = ends[0];
    QList<QByteArray> words{QFile::encodeName(program)};
    for (const QString& argument : arguments)
        words.append(QFile::encodeName(argument));
    QList<QByteArray> variables = environmentWith(environment);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    if (errors == Errors::output)
        ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    const int error = ::posix_spawnp(
        &m_process, words.first().constData(), &actions, nullptr, pointersTo(words).data(),
        pointersTo(variables).data());
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    EXPECT_EQ(error, 0) << program.toStdString() << " does not start";
    if (error != 0)
        m_status = -1;
}

ChildProcess::~ChildProcess()
{
    sendSignal(SIGKILL);
    waitForEnd();
    ::close(m_output);
}

std::optional<QByteArray> ChildProcess::readLine(std::chrono::milliseconds patience)
{
    while (!m_unread.contains('\n')) {
        if (!readMore(patience))
            return std::nullopt;
    }
    const qsizetype end = m_unread.indexOf('\n');
    const QByteArray line = m_unread.first(end);
    m_unread.remove(0, end + 1);
    return line;
}

void ChildProcess::sendSignal(int signal) const
{
    if (!m_status)
        ::kill(m_process, signal);
}

std::optional<int> ChildProcess::waitForEnd(std::chrono::milliseconds patience)
{
    // The output ends when the process does, and unlike its end it can be waited for with a limit.
    while (!m_outputEnded && readMore(patience)) {
    }
    if (m_outputEnded && !m_status) {
        int status = 0;
        while (::waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
        }
        m_status = status;
    }
    return m_status;
}

bool ChildProcess::readMore(std::chrono::milliseconds patience)
{
    if (m_outputEnded)
        return false;
    pollfd watched{m_output, POLLIN, 0};
    if (::poll(&watched, 1, static_cast<int>(patience.count())) <= 0)
        return false;
    std::array<char, 65536> block{};
    const ssize_t count = ::read(m_output, block.data(), block.size());
    m_outputEnded = count <= 0;
    m_unread.append(block.data(), count > 0 ? count : 0);
    return !m_outputEnded;
}

} // namespace quillo
