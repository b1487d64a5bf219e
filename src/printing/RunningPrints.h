// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <chrono>

namespace quillo {

/// Counts the prints that are being written, from making to destroying one of these, so that the program does
/// not end in the middle of a file that nobody would take away. Any thread.
class RunningPrint
{
public:
    RunningPrint();
    ~RunningPrint();
    RunningPrint(const RunningPrint&) = delete;
    RunningPrint& operator=(const RunningPrint&) = delete;
};

/// Waits for all prints to end, which cancelled ones do soon. To be called when the windows are gone.
void waitForRunningPrints(std::chrono::milliseconds patience);

} // namespace quillo
