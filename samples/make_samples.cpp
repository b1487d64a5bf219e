// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

#include <charconv>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* usage =
    "usage: make_samples FOLDER\n"
    "       make_samples --one-colour PAGES RRGGBB FILE\n"
    "Writes the sample documents into FOLDER, or a document of one to a million pages\n"
    "filled with one colour to FILE.\n";

constexpr unsigned maximumPages = 1'000'000;

std::optional<unsigned> parsed(std::string_view digits, int base)
{
    unsigned value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    if (error != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return value;
}

void write(const std::filesystem::path& path, const std::string& bytes)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        throw std::runtime_error(path.string() + ": cannot be written");
}

int run(const std::vector<std::string_view>& arguments)
{
    if (arguments.size() == 1 && arguments[0] == "--help") {
        std::fputs(usage, stdout);
        return 0;
    }
    if (arguments.size() == 4 && arguments[0] == "--one-colour") {
        const auto pages = parsed(arguments[1], 10);
        const auto rgb = parsed(arguments[2], 16);
        if (pages && *pages > 0 && *pages <= maximumPages && rgb && arguments[2].size() == 6) {
            write(arguments[3], samples::makeOneColour(*pages, *rgb));
            return 0;
        }
    } else if (arguments.size() == 1 && arguments[0].substr(0, 1) != "-") {
        for (const samples::Sample& sample : samples::allSamples())
            write(std::filesystem::path(arguments[0]) / sample.name, sample.make());
        return 0;
    }
    std::fputs(usage, stderr);
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_samples: %s\n", error.what());
        return 1;
    }
}
