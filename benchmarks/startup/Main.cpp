// SPDX-License-Identifier: AGPL-3.0-or-later
// Times program start to first page painted: starts Quillo, a bare Qt window and the PDF viewers that are
// installed on the same one-colour document and waits until the colour is on the screen. Rounds go through
// all programs in turn, so that a change in the machine's load meets all of them.
//
//   startup_benchmark QUILLO BARE_WINDOW DOCUMENTS [ROUNDS]
//
// DOCUMENTS holds one-colour-1.pdf, one-colour-2000.pdf and one-colour-20000.pdf in the colour 00A050.

#include "ChildProcess.h"
#include "Screen.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace quillo::benchmark {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr std::uint32_t pageColour = 0x00A050;
constexpr auto patience = std::chrono::seconds(20);
// Longer than it takes to read the text of 2,000 pages.
constexpr auto settling = std::chrono::seconds(4);

struct Contestant
{
    std::string name;
    std::vector<std::string> command;
    std::vector<double> times = {};
    /// It ended or did not show the colour in time, and is not asked again.
    bool hasFailed = false;
};

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

bool isInstalled(const std::string& program)
{
    return std::filesystem::exists("/usr/bin/" + program);
}

void waitUntilGone(const Screen& screen)
{
    while (screen.shows(pageColour))
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    // The window manager and the disk come to rest.
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
}

/// Milliseconds from start to colour; none when the program ends or does not show it in time.
std::optional<double> timeToColour(const Screen& screen, const std::vector<std::string>& command)
{
    std::optional<double> time;
    {
        const auto start = Clock::now();
        const ChildProcess program(command);
        while (program.isRunning() && Clock::now() - start < patience) {
            if (screen.shows(pageColour)) {
                time = Milliseconds(Clock::now() - start).count();
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    waitUntilGone(screen);
    return time;
}

std::vector<Contestant>
contestants(const std::string& quillo, const std::string& bareWindow, const std::string& documents)
{
    const auto document = [&](const char* pages) { return documents + "/one-colour-" + pages + ".pdf"; };
    std::vector<Contestant> result = {
        {"bare Qt window", {bareWindow}},
        {"quillo, 1 page", {quillo, document("1")}},
        {"quillo, 2,000 pages", {quillo, document("2000")}},
        {"quillo, 20,000 pages", {quillo, document("20000")}},
    };
    for (const char* viewer : {"mupdf", "zathura", "qpdfview", "evince", "okular"}) {
        if (!isInstalled(viewer)) {
            std::printf("%s is not installed.\n", viewer);
            continue;
        }
        result.push_back({std::string(viewer) + ", 1 page", {viewer, document("1")}});
        result.push_back({std::string(viewer) + ", 20,000 pages", {viewer, document("20000")}});
    }
    return result;
}

void printTimes(std::vector<Contestant>& all)
{
    const double bare = median(all.front().times);
    std::printf("\n%-26s %10s %8s %6s\n", "start to first page", "median ms", "ratio", "runs");
    for (const Contestant& contestant : all) {
        if (contestant.times.empty()) {
            std::printf("%-26s %10s\n", contestant.name.c_str(), "never");
            continue;
        }
        const double time = median(contestant.times);
        std::printf(
            "%-26s %10.1f %8.2f %6zu\n", contestant.name.c_str(), time, time / bare, contestant.times.size());
    }
}

double settledPeak(const std::vector<std::string>& command)
{
    const ChildProcess program(command);
    std::this_thread::sleep_for(settling);
    return static_cast<double>(program.peakMemory()) / 1024;
}

void printMemory(const std::string& quillo, const std::string& documents)
{
    const double empty = settledPeak({quillo});
    const double full = settledPeak({quillo, documents + "/one-colour-2000.pdf"});
    std::printf("\npeak memory, empty window  %8.1f MB\n", empty);
    std::printf("peak memory, 2,000 pages   %8.1f MB (%+.1f MB)\n", full, full - empty);
}

void run(const std::string& quillo, const std::string& bareWindow, const std::string& documents, int rounds)
{
    const Screen screen;
    auto all = contestants(quillo, bareWindow, documents);
    for (int round = 0; round <= rounds; ++round) {
        for (Contestant& contestant : all) {
            if (contestant.hasFailed)
                continue;
            const auto time = timeToColour(screen, contestant.command);
            contestant.hasFailed = !time;
            std::fprintf(stderr, "%s: %.1f ms\n", contestant.name.c_str(), time.value_or(-1));
            // The first round warms the disk cache and lets programs write their first settings.
            if (time && round > 0)
                contestant.times.push_back(*time);
        }
    }
    if (all.front().times.empty())
        throw std::runtime_error("the bare window never appeared");
    printTimes(all);
    printMemory(quillo, documents);
}

} // namespace
} // namespace quillo::benchmark

int main(int argc, char* argv[])
{
    if (argc < 4 || argc > 5) {
        std::fputs("usage: startup_benchmark QUILLO BARE_WINDOW DOCUMENTS [ROUNDS]\n", stderr);
        return 2;
    }
    try {
        quillo::benchmark::run(argv[1], argv[2], argv[3], argc == 5 ? std::stoi(argv[4]) : 10);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "startup_benchmark: %s\n", error.what());
        return 1;
    }
    return 0;
}
