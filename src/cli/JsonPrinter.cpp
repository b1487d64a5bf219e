// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/JsonPrinter.h"

#include "insight/InsightJson.h"
#include "pdf/FileName.h"
#include "understanding/InformationExtraction.h"

namespace quillo::cli {
namespace {

constexpr const char* itemsKey = "extractedItems";

} // namespace

JsonPrinter::JsonPrinter(Output& output)
    : m_writer([this](QByteArrayView piece) {
        m_hasPartOfLine = true;
        m_output.write(piece);
    })
    , m_output(output)
{}

void JsonPrinter::beginFile(const QString& name)
{
    m_file = pdf::printableFileName(name);
    m_writer.restart();
    if (m_hasPartOfLine)
        m_output.write("\n");
    m_hasPartOfLine = false;
}

void JsonPrinter::openObject()
{
    m_writer.beginObject();
    if (m_file) {
        m_writer.key("file");
        m_writer.text(*m_file);
    }
}

void JsonPrinter::closeObject()
{
    m_writer.endObject();
    endLine();
}

void JsonPrinter::endLine()
{
    m_writer.flush();
    m_output.write("\n");
    m_hasPartOfLine = false;
}

void JsonPrinter::writeMembers(const Json& object)
{
    openObject();
    for (const auto& [key, value] : object.items()) {
        m_writer.key(key);
        m_writer.value(value);
    }
    closeObject();
}

void JsonPrinter::writePage(const PageText& page)
{
    m_writer.beginObject();
    m_writer.key("pageNumber");
    m_writer.integer(page.pageNumber);
    m_writer.key("text");
    m_writer.text(page.text);
    m_writer.key("isOCR");
    m_writer.boolean(page.isOCR);
    m_writer.key("boundingBoxes");
    if (page.boundingBoxes) {
        m_writer.beginArray();
        for (const TextBoundingBox& box : *page.boundingBoxes) {
            m_writer.beginObject();
            m_writer.key("text");
            m_writer.text(box.text);
            m_writer.key("rect");
            m_writer.rect(box.rect);
            m_writer.endObject();
        }
        m_writer.endArray();
    } else {
        m_writer.null();
    }
    m_writer.endObject();
}

void JsonPrinter::printText(const PDFTextExtractor::Reading& reading)
{
    openObject();
    m_writer.key("totalPages");
    m_writer.integer(reading.totalPages);
    m_writer.key("pageTexts");
    m_writer.beginArray();
    for (const PageText& page : reading.pageTexts)
        writePage(page);
    m_writer.endArray();
    closeObject();
}

void JsonPrinter::printClassification(const DocumentInsight& insight)
{
    writeMembers(toJson(insight));
}

void JsonPrinter::writeItems(const PageTexts& pages)
{
    m_writer.beginArray();
    for (const PageText& page : pages) {
        for (const ExtractedItem& item : extractItems(page.text, page.pageNumber))
            write(m_writer, item);
    }
    m_writer.endArray();
}

void JsonPrinter::printItems(const PageTexts& pages)
{
    if (!m_file) {
        writeItems(pages);
        endLine();
        return;
    }
    openObject();
    m_writer.key("items");
    writeItems(pages);
    closeObject();
}

void JsonPrinter::printActions(const DocumentInsight::ActionRequired& actions)
{
    writeMembers(toJson(actions));
}

void JsonPrinter::printExplanation(const ExplanationResult& explanation)
{
    openObject();
    m_writer.key("originalText");
    m_writer.text(explanation.originalText);
    m_writer.key("explanation");
    m_writer.text(explanation.explanation);
    if (explanation.simplified) {
        m_writer.key("simplified");
        m_writer.text(*explanation.simplified);
    }
    closeObject();
}

void JsonPrinter::printAnalysis(const DocumentInsight& insight, const PageTexts& pages)
{
    openObject();
    const Json object = toJson(insight);
    for (const auto& [key, value] : object.items()) {
        m_writer.key(key);
        if (key == itemsKey)
            writeItems(pages);
        else
            m_writer.value(value);
    }
    closeObject();
}

} // namespace quillo::cli
