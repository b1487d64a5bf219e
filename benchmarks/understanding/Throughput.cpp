// SPDX-License-Identifier: AGPL-3.0-or-later
#include "Throughput.h"

#include "Grep.h"
#include "Timing.h"
#include "understanding/ActionDetection.h"
#include "understanding/DocumentClassification.h"
#include "understanding/ExtractionReference.h"
#include "understanding/InformationExtraction.h"

#include <QTemporaryFile>

#include <cstdio>
#include <optional>

namespace quillo::benchmark {
namespace {

constexpr int rounds = 3;

struct Row
{
    double quillo = 0;
    double plainLoop = 0;
    /// Absent where grep gave up on one of the patterns.
    std::optional<double> grep = 0;
    std::size_t items = 0;
};

std::optional<double> sum(std::optional<double> one, std::optional<double> other)
{
    return one && other ? std::optional(*one + *other) : std::nullopt;
}

void print(const char* name, const Row& row, double megabytes)
{
    std::printf(
        "%-10s %9zu %9.1f %9.1f %8.1fx", name, row.items, megabytes / row.quillo, megabytes / row.plainLoop,
        row.plainLoop / row.quillo);
    if (row.grep)
        std::printf(" %9.1f %8.1fx\n", megabytes / *row.grep, *row.grep / row.quillo);
    else
        std::printf(" %9s\n", "gave up");
    std::fflush(stdout);
}

Row measureKind(const reference::Kind& kind, const QString& text, const QString& file)
{
    Row row;
    row.quillo = secondsOf(rounds, [&] { row.items = extractItems(kind.type, text, 0).size(); });
    std::size_t expected = 0;
    row.plainLoop = secondsOf(1, [&] { expected = reference::extractItems(kind, text, 0).size(); });
    for (const char16_t* pattern : kind.patterns)
        row.grep = sum(row.grep, secondsOfGrep(QString::fromUtf16(pattern), kind.caseInsensitive, file));
    if (row.items != expected)
        std::printf("The plain loop finds %zu items where the extractor finds %zu.\n", expected, row.items);
    return row;
}

} // namespace

void measureThroughput(const QString& text)
{
    QTemporaryFile file;
    const QByteArray bytes = text.toUtf8();
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush()) {
        std::printf("There is no room for the text.\n");
        return;
    }
    const double megabytes = static_cast<double>(bytes.size()) / 1e6;

    std::printf("Extraction from %.0f MB of text, in MB/s; ratios are times as fast.\n\n", megabytes);
    std::printf(
        "%-10s %9s %9s %9s %9s %9s %9s\n", "kind", "items", "Quillo", "plain ICU", "ratio", "grep -P",
        "ratio");
    Row all;
    for (const reference::Kind& kind : reference::kinds()) {
        const Row row = measureKind(kind, text, file.fileName());
        print(rawValue(kind.type).toLatin1().constData(), row, megabytes);
        all.plainLoop += row.plainLoop;
        all.grep = sum(all.grep, row.grep);
    }
    all.quillo = secondsOf(rounds, [&] { all.items = extractItems(text, 0).size(); });
    print("all", all, megabytes);

    PageTexts pages;
    pages.emplace_back(0, text, false, std::nullopt);
    const double classification = secondsOf(rounds, [&] { classifyText(text); });
    const double detection = secondsOf(rounds, [&] { detectActions(pages, DateSettings::system()); });
    std::printf(
        "\nClassification %.1f MB/s, detection of actions %.1f MB/s.\n", megabytes / classification,
        megabytes / detection);
}

} // namespace quillo::benchmark
