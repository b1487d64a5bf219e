// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/PDFTextExtractor.h"
#include "insight/DocumentInsight.h"
#include "insight/ExplanationResult.h"

#include <QString>

#include <optional>

namespace quillo::cli {

/// How results are shown, one call for each input. Items are looked for page by page while they are printed,
/// so that no more than a page's are ever held. All throw OutputError.
class Printer
{
public:
    Printer() = default;
    virtual ~Printer() = default;
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;

    /// Says of which file the following result is. Only called where there are several.
    virtual void beginFile(const QString& name) = 0;

    virtual void printText(const PDFTextExtractor::Reading& reading) = 0;
    virtual void printClassification(const DocumentInsight& insight) = 0;
    virtual void printItems(const PageTexts& pages) = 0;
    virtual void printActions(const DocumentInsight::ActionRequired& actions) = 0;
    virtual void printExplanation(const ExplanationResult& explanation) = 0;
    /// The insight's classification and actions, and the items of the pages.
    virtual void printAnalysis(const DocumentInsight& insight, const PageTexts& pages) = 0;
};

} // namespace quillo::cli
