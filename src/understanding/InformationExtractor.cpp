// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/InformationExtractor.h"

#include "understanding/InformationExtraction.h"

namespace quillo {

InformationExtractor::InformationExtractor()
    : m_actor(QStringLiteral("InformationExtractor"))
{}

InformationExtractor& InformationExtractor::shared()
{
    static auto* const extractor = new InformationExtractor;
    return *extractor;
}

QFuture<std::vector<ExtractedItem>>
InformationExtractor::extractInformation(const DocumentState& documentState)
{
    return m_actor.run([pages = documentState.pageTexts()] { return extractItems(*pages); });
}

} // namespace quillo
