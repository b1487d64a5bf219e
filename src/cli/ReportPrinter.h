// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "cli/Output.h"
#include "cli/Printer.h"
#include "cli/Terminal.h"

#include <QCoreApplication>

namespace quillo::cli {

/// Reports for people: aligned, wrapped to the terminal's width, pages counted from 1. Whatever comes from a
/// document is made safe for the terminal first (see SafeText.h).
class ReportPrinter : public Printer
{
    Q_DECLARE_TR_FUNCTIONS(quillo::cli::ReportPrinter)

public:
    ReportPrinter(Output& output, const Terminal& terminal)
        : m_output(output)
        , m_terminal(terminal)
    {}

    void beginFile(const QString& name) override;

    /// On a terminal every page has a heading. Elsewhere the pages are separated by form feeds, so that the
    /// text can be read again as plain text.
    void printText(const PDFTextExtractor::Reading& reading) override;
    void printClassification(const DocumentInsight& insight) override;
    void printItems(const PageTexts& pages) override;
    void printActions(const DocumentInsight::ActionRequired& actions) override;
    void printExplanation(const ExplanationResult& explanation) override;
    void printAnalysis(const DocumentInsight& insight, const PageTexts& pages) override;

private:
    void printHeading(const QString& heading);
    void printFact(const QString& label, const QString& value, Style style = Style::plain);
    void printPageItems(const PageText& page, const std::vector<ExtractedItem>& items);
    void printItem(const ExtractedItem& item, int valueWidth);

    Output& m_output;
    const Terminal m_terminal;
    bool m_isFirstFile = true;
};

} // namespace quillo::cli
