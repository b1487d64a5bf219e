// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/DocumentClassifier.h"

#include "document/PDFTextExtractor.h"
#include "understanding/DocumentClassification.h"

namespace quillo {

DocumentClassifier::DocumentClassifier()
    : m_actor(QStringLiteral("DocumentClassifier"))
{}

DocumentClassifier& DocumentClassifier::shared()
{
    static auto* const classifier = new DocumentClassifier;
    return *classifier;
}

QFuture<DocumentInsight> DocumentClassifier::classifyDocument(const DocumentState& documentState)
{
    return m_actor.run(
        [pages = documentState.pageTexts()] { return classifyText(PDFTextExtractor::getAllText(*pages)); });
}

} // namespace quillo
