// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace quillo::benchmark {

/// A program that runs until this object goes; it and its own children are ended then.
class ChildProcess
{
public:
    /// Starts the program; found on the path unless its name holds a slash. What it prints is dropped.
    /// Throws std::system_error.
    explicit ChildProcess(const std::vector<std::string>& command);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool isRunning() const;

    /// The most memory that the program itself has held so far, in kilobytes; 0 when it is gone.
    long peakMemory() const;

private:
    pid_t m_pid = 0;
    mutable bool m_ended = false;
};

} // namespace quillo::benchmark
