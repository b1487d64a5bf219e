// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/PasswordQuestion.h"

#include "cli/SafeText.h"

#include <QByteArray>
#include <QCoreApplication>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <mutex>

namespace quillo::cli {
namespace {

// What ends or stops a process while it waits for somebody to type.
constexpr std::array<int, 5> caughtSignals = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP};

// A terminal hands over no longer line than this.
constexpr std::size_t longestLine = 4096;

class Descriptor
{
public:
    explicit Descriptor(int value)
        : m_value(value)
    {}
    ~Descriptor()
    {
        if (m_value >= 0)
            ::close(m_value);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    operator int() const { return m_value; }

private:
    const int m_value;
};

/// Where the handler puts the number of a signal, so that whoever waits finds it on whatever thread it came.
int signalPipe = -1;

void noteSignal(int number)
{
    const int error = errno;
    const char byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t count = ::write(signalPipe, &byte, 1);
    errno = error;
}

/// Takes the signals' usual course away from them as long as it lives.
class CaughtSignals
{
public:
    CaughtSignals()
    {
        std::array<int, 2> ends = {-1, -1};
        if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
            return;
        m_readingEnd = ends[0];
        signalPipe = ends[1];
        struct sigaction action = {};
        action.sa_handler = noteSignal;
        for (std::size_t i = 0; i < caughtSignals.size(); ++i) {
            sigaction(caughtSignals[i], nullptr, &m_before[i]);
            // What is ignored stays ignored.
            if (m_before[i].sa_handler != SIG_IGN)
                sigaction(caughtSignals[i], &action, nullptr);
        }
    }

    ~CaughtSignals()
    {
        if (m_readingEnd < 0)
            return;
        for (std::size_t i = 0; i < caughtSignals.size(); ++i)
            sigaction(caughtSignals[i], &m_before[i], nullptr);
        ::close(m_readingEnd);
        ::close(signalPipe);
        signalPipe = -1;
    }

    CaughtSignals(const CaughtSignals&) = delete;
    CaughtSignals& operator=(const CaughtSignals&) = delete;

    /// Can be read once there was a signal; -1 where signals cannot be caught.
    int descriptor() const { return m_readingEnd; }

    /// The first signal that has come; 0 when none has.
    int first() const
    {
        char number = 0;
        return ::read(m_readingEnd, &number, 1) == 1 ? number : 0;
    }

private:
    int m_readingEnd = -1;
    std::array<struct sigaction, caughtSignals.size()> m_before = {};
};

void show(int terminal, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    [[maybe_unused]] const ssize_t count =
        ::write(terminal, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

/// Keeps what is typed from being shown as long as it lives, or until the question is abandoned. What was
/// typed before is thrown away.
class HiddenTyping
{
public:
    explicit HiddenTyping(int terminal)
        : m_terminal(terminal)
    {
        const std::lock_guard lock(mutex());
        m_isKnown = ::tcgetattr(terminal, &m_before) == 0;
        termios hidden = m_before;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
        hidden.c_lflag |= ICANON | ISIG;
        m_isHidden = m_isKnown && ::tcsetattr(terminal, TCSAFLUSH, &hidden) == 0;
        current = this;
    }

    ~HiddenTyping()
    {
        const std::lock_guard lock(mutex());
        current = nullptr;
        restore();
    }

    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;

    bool isHidden() const { return m_isHidden; }

    /// Restores the terminal for a process that ends now. The lock is never given back, so that no question
    /// hides the typing again.
    static void abandon()
    {
        mutex().lock();
        if (!current)
            return;
        // What the question has left of its line.
        show(current->m_terminal, QStringLiteral("\n"));
        current->restore();
    }

private:
    static std::mutex& mutex()
    {
        static auto* const mutex = new std::mutex;
        return *mutex;
    }

    void restore() const
    {
        if (m_isKnown)
            ::tcsetattr(m_terminal, TCSADRAIN, &m_before);
    }

    static inline HiddenTyping* current = nullptr;

    const int m_terminal;
    termios m_before = {};
    bool m_isKnown = false;
    bool m_isHidden = false;
};

struct Answer
{
    /// Absent when the input was ended.
    std::optional<QString> password;
    /// The signal that came instead of an answer; 0 for none.
    int signal = 0;
};

/// Waits for a line or a signal.
Answer readLine(int terminal, const CaughtSignals& signals)
{
    for (;;) {
        std::array<pollfd, 2> waiting = {{{terminal, POLLIN, 0}, {signals.descriptor(), POLLIN, 0}}};
        if (::poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR)
            return {};
        if (const int signal = signals.first(); signal != 0)
            return {std::nullopt, signal};
        if (waiting[0].revents == 0)
            continue;
        std::array<char, longestLine> line = {};
        const ssize_t size = ::read(terminal, line.data(), line.size());
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            return {};
        QByteArrayView bytes(line.data(), size);
        if (bytes.endsWith('\n'))
            bytes.chop(1);
        return {QString::fromUtf8(bytes), 0};
    }
}

Answer ask(int terminal, const QString& question)
{
    const CaughtSignals signals;
    const HiddenTyping hidden(terminal);
    if (signals.descriptor() < 0 || !hidden.isHidden())
        return {};
    show(terminal, question);
    Answer answer = readLine(terminal, signals);
    // The line end that was typed is not shown either.
    show(terminal, QStringLiteral("\n"));
    return answer;
}

} // namespace

std::optional<QString> askForPassword(const QString& fileName, bool isRepeated)
{
    if (::isatty(STDIN_FILENO) != 1 && ::isatty(STDERR_FILENO) != 1)
        return std::nullopt;
    const Descriptor terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC));
    // A process in the background would be stopped by asking.
    if (terminal < 0 || ::tcgetpgrp(terminal) != ::getpgrp())
        return std::nullopt;
    QString question;
    if (isRepeated)
        question = QCoreApplication::translate("quillo::cli", "The password is wrong.") + QLatin1Char('\n');
    question += QCoreApplication::translate("quillo::cli", "Password of %1: ").arg(safeName(fileName));
    for (;;) {
        const Answer answer = ask(terminal, question);
        if (answer.signal == 0)
            return answer.password;
        ::kill(::getpid(), answer.signal);
        // Who was stopped and goes on is asked again. Everything else ends the process, if by another thread;
        // there must be no time to take the missing answer for a refusal and to go on.
        while (answer.signal != SIGTSTP)
            ::pause();
    }
}

void abandonQuestion()
{
    HiddenTyping::abandon();
}

} // namespace quillo::cli
