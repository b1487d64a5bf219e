// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

namespace samples {

const std::vector<Sample>& allSamples()
{
    static const std::vector<Sample> samples = {
        {"contract.pdf", makeContract}, {"form.pdf", makeForm},     {"invoice.pdf", makeInvoice},
        {"letter.pdf", makeLetter},     {"manual.pdf", makeManual}, {"multilingual.pdf", makeMultilingual},
        {"scan.pdf", makeScan},
    };
    return samples;
}

} // namespace samples
