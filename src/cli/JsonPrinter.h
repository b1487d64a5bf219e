// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "cli/Output.h"
#include "cli/Printer.h"
#include "json/JsonWriter.h"

namespace quillo::cli {

/// One JSON value on a line for each input; an object that begins with "file" where there are several. What
/// grows with the document is written piece by piece.
class JsonPrinter : public Printer
{
public:
    /// The output has to outlive the printer.
    explicit JsonPrinter(Output& output);

    /// Where the result before broke off in the middle, its line ends here and is no JSON.
    void beginFile(const QString& name) override;

    /// {"totalPages", "pageTexts": [{"pageNumber", "text", "isOCR", "boundingBoxes": [{"text",
    /// "rect": [[x, y], [width, height]]}] or null}]}
    void printText(const PDFTextExtractor::Reading& reading) override;
    void printClassification(const DocumentInsight& insight) override;
    /// The array of the items; with several files it is the member "items" of the object.
    void printItems(const PageTexts& pages) override;
    void printActions(const DocumentInsight::ActionRequired& actions) override;
    /// {"originalText", "explanation", "simplified"}
    void printExplanation(const ExplanationResult& explanation) override;
    void printAnalysis(const DocumentInsight& insight, const PageTexts& pages) override;

private:
    /// Opens the object of an input, and tells the file where it has to be told.
    void openObject();
    void closeObject();
    void endLine();
    void writeMembers(const Json& object);
    void writePage(const PageText& page);
    void writeItems(const PageTexts& pages);

    JsonWriter m_writer;
    Output& m_output;
    std::optional<QString> m_file;
    bool m_hasPartOfLine = false;
};

} // namespace quillo::cli
