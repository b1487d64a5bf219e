// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Interruption.h"

#include "cli/Commands.h"
#include "cli/PasswordQuestion.h"
#include "cli/Progress.h"
#include "cli/SafeText.h"

#include <QCoreApplication>

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <system_error>

namespace quillo::cli {
namespace {

constexpr std::array<int, 2> signals = {SIGINT, SIGTERM};

constexpr std::chrono::milliseconds drawingInterval(200);

// What goes through the pipe is a signal's number or this.
constexpr unsigned char noSignal = 0;

std::atomic<int> signalPipe = -1;

void send(int descriptor, unsigned char byte)
{
    while (::write(descriptor, &byte, 1) < 0 && errno == EINTR) {
    }
}

void handleSignal(int signal)
{
    const int error = errno;
    send(signalPipe, static_cast<unsigned char>(signal));
    errno = error;
}

void exchangeHandlers(void (*expected)(int), void (*handler)(int))
{
    for (const int signal : signals) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != expected)
            continue;
        action = {};
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

Interruption::Interruption(Progress& progress, std::optional<std::chrono::duration<double>> timeLimit)
    : m_progress(progress)
    , m_timeLimit(timeLimit)
    , m_start(Clock::now())
{
    if (::pipe(m_pipe.data()) != 0)
        throw std::system_error(errno, std::generic_category());
    signalPipe = m_pipe[1];
    m_thread = std::thread(&Interruption::watch, this);
    exchangeHandlers(SIG_DFL, handleSignal);
}

Interruption::~Interruption()
{
    exchangeHandlers(handleSignal, SIG_DFL);
    send(m_pipe[1], noSignal);
    m_thread.join();
    ::close(m_pipe[0]);
    ::close(m_pipe[1]);
}

void Interruption::nameInput(const QString& name)
{
    const std::lock_guard lock(m_mutex);
    m_inputName = name;
}

int Interruption::patience() const
{
    using Milliseconds = std::chrono::duration<double, std::milli>;
    double patience = std::numeric_limits<int>::max();
    if (m_progress.isShown())
        patience = Milliseconds(drawingInterval).count();
    else if (!m_timeLimit)
        return -1;
    if (m_timeLimit)
        patience = std::min(patience, Milliseconds(*m_timeLimit - (Clock::now() - m_start)).count() + 1);
    return static_cast<int>(std::max(patience, 0.0));
}

void Interruption::watch()
{
    for (;;) {
        pollfd descriptor = {m_pipe[0], POLLIN, 0};
        unsigned char byte = noSignal;
        if (::poll(&descriptor, 1, patience()) == 1 && ::read(m_pipe[0], &byte, 1) == 1) {
            if (byte == noSignal)
                return;
            endBySignal(byte);
        }
        if (m_timeLimit && Clock::now() - m_start >= *m_timeLimit)
            endByTimeLimit();
        m_progress.draw();
    }
}

void Interruption::endByTimeLimit()
{
    m_progress.end();
    abandonQuestion();
    const std::lock_guard lock(m_mutex);
    const QString message = QCoreApplication::translate("quillo::cli", "the time limit of %1 s is over")
                                .arg(m_timeLimit->count());
    std::fprintf(
        stderr, "quillo-cli: %s: %s\n", qUtf8Printable(safeName(m_inputName)), qUtf8Printable(message));
    std::_Exit(static_cast<int>(ExitStatus::unreadableInput));
}

void Interruption::endBySignal(int signal)
{
    m_progress.end();
    // Whoever started the program is to see that it was interrupted: a shell then ends its loop, too.
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    std::_Exit(128 + signal);
}

} // namespace quillo::cli
