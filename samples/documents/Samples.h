// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace samples {

// Each returns the bytes of a whole PDF file, the same at every call and on every machine.

/// One page that asks to be paid: addresses, a table of services, totals, a due date, a payment slip.
std::string makeInvoice();
/// A business letter of one page.
std::string makeLetter();
/// An application form of one page with fields of every kind.
std::string makeForm();
/// Twelve pages with an outline, a linked table of contents, cross-references and a web link.
std::string makeManual();
/// Two pages of legal language.
std::string makeContract();

/// One page in fifteen languages and five scripts, with embedded fonts and coloured emoji.
std::string makeMultilingual();
/// Two pages that are pictures of paper: no text layer, a little askew, with dust.
std::string makeScan();

/// Empty pages filled with one colour, 0xRRGGBB, which share their content.
std::string makeOneColour(std::size_t pageCount, unsigned rgb);

struct Sample
{
    /// The name of the file.
    std::string_view name;
    std::string (*make)();
};

/// All samples but the one-colour documents.
const std::vector<Sample>& allSamples();

} // namespace samples
