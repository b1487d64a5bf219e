// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/InformationExtraction.h"

#include "understanding/ExtractionComparison.h"
#include "understanding/ExtractionPieces.h"
#include "understanding/ExtractionReference.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

using namespace quillo;

namespace {

/// Bytes as UTF-16 units, whatever they are.
QString rawText(std::span<const std::uint8_t> bytes)
{
    QString text(static_cast<qsizetype>(bytes.size() / 2), Qt::Uninitialized);
    std::memcpy(text.data(), bytes.data(), static_cast<std::size_t>(text.size()) * 2);
    return text;
}

/// Every byte a piece of a pattern, so that the fuzzer need not find the words by itself.
QString textOfPieces(std::span<const std::uint8_t> bytes)
{
    const QStringList& pieces = extractionPieces();
    QString text;
    for (const std::uint8_t byte : bytes)
        text += pieces[byte % pieces.size()];
    return text;
}

} // namespace

// Ends with an error where the extractor and the plain loop over ICU differ. The first byte of the input
// tells what the others mean.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::span<const std::uint8_t> rest(data + 1, size - 1);
    const QString text = data[0] % 2 == 0 ? rawText(rest) : textOfPieces(rest);
    const std::string difference = differenceOf(extractItems(text, 1), reference::extractItems(text, 1));
    if (!difference.empty()) {
        std::fprintf(stderr, "%s\nin: %s\n", difference.c_str(), printable(text).c_str());
        std::abort();
    }
    return 0;
}
