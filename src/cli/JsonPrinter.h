// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "cli/Output.h"
#include "cli/Printer.h"
#include "json/StrictJson.h"

namespace quillo::cli {

/// One JSON value on a line for each input; an object that begins with "file" where there are several. What
/// grows with the document is written piece by piece.
class JsonPrinter : public Printer
{
public:
    explicit JsonPrinter(Output& output)
        : m_output(output)
    {}

    void beginFile(const QString& name) override { m_file = name; }

    /// {"totalPages", "pageTexts": [{"pageNumber", "text", "isOCR", "boundingBoxes": [{"text",
    /// "rect": [x, y, width, height]}] or null}]}
    void printText(const PDFTextExtractor::Reading& reading) override;
    void printClassification(const DocumentInsight& insight) override;
    /// The array of the items; with several files it is the member "items" of the object.
    void printItems(const PageTexts& pages) override;
    void printActions(const DocumentInsight::ActionRequired& actions) override;
    /// {"originalText", "explanation", "simplified"}
    void printExplanation(const ExplanationResult& explanation) override;
    void printAnalysis(const DocumentInsight& insight, const PageTexts& pages) override;

private:
    /// Writes the brace that opens an object, and the file where it has to be told.
    void openObject();
    /// Writes a member's key, with the comma before it where it is not the first.
    void writeKey(const char* key);
    void writeMember(const char* key, const Json& value);
    void writePage(const PageText& page);
    void writeItems(const PageTexts& pages);
    void writeObject(const Json& object);

    Output& m_output;
    std::optional<QString> m_file;
    bool m_isFirstMember = true;
};

} // namespace quillo::cli
