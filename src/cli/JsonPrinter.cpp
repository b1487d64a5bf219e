// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/JsonPrinter.h"

#include "insight/InsightJson.h"
#include "understanding/InformationExtraction.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace quillo::cli {
namespace {

constexpr const char* itemsKey = "extractedItems";

// Text is handed on when it has grown to this.
constexpr qsizetype pieceSize = 65536;

// A book has as many boxes as words, so these are written straight to text. All else goes by way of values.

void appendNumber(QByteArray& json, double value)
{
    if (!std::isfinite(value)) {
        json += "null";
        return;
    }
    // More than the shortest form of any number takes.
    std::array<char, 32> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    json.append(digits.data(), end - digits.data());
}

void appendText(QByteArray& json, const QString& text)
{
    const auto isPlain = [](QChar character) {
        const char16_t unit = character.unicode();
        return unit >= 0x20 && unit < 0x7F && unit != u'"' && unit != u'\\';
    };
    if (std::all_of(text.begin(), text.end(), isPlain))
        json.append('"').append(text.toLatin1()).append('"');
    else
        json += toJsonText(toJson(text));
}

void appendBox(QByteArray& json, const TextBoundingBox& box)
{
    json += "{\"text\":";
    appendText(json, box.text);
    json += ",\"rect\":[";
    const QRectF& rect = box.rect;
    bool isFirst = true;
    for (const double value : {rect.x(), rect.y(), rect.width(), rect.height()}) {
        if (!isFirst)
            json += ',';
        isFirst = false;
        appendNumber(json, value);
    }
    json += "]}";
}

} // namespace

void JsonPrinter::openObject()
{
    m_output.write("{");
    m_isFirstMember = true;
    if (m_file)
        writeMember("file", toJson(*m_file));
}

void JsonPrinter::writeKey(const char* key)
{
    if (!m_isFirstMember)
        m_output.write(",");
    m_isFirstMember = false;
    m_output.write(toJsonText(Json(key)));
    m_output.write(":");
}

void JsonPrinter::writeMember(const char* key, const Json& value)
{
    writeKey(key);
    m_output.write(toJsonText(value));
}

void JsonPrinter::writeObject(const Json& object)
{
    openObject();
    for (const auto& [key, value] : object.items())
        writeMember(key.c_str(), value);
    m_output.write("}\n");
}

void JsonPrinter::writePage(const PageText& page)
{
    m_output.write("{");
    m_isFirstMember = true;
    writeMember("pageNumber", page.pageNumber);
    writeMember("text", toJson(page.text));
    writeMember("isOCR", page.isOCR);
    writeKey("boundingBoxes");
    if (page.boundingBoxes) {
        QByteArray boxes = "[";
        for (const TextBoundingBox& box : *page.boundingBoxes) {
            if (&box != &page.boundingBoxes->front())
                boxes += ',';
            appendBox(boxes, box);
            if (boxes.size() > pieceSize) {
                m_output.write(boxes);
                boxes.clear();
            }
        }
        m_output.write(boxes + ']');
    } else {
        m_output.write("null");
    }
    m_output.write("}");
}

void JsonPrinter::printText(const PDFTextExtractor::Reading& reading)
{
    openObject();
    writeMember("totalPages", reading.totalPages);
    writeKey("pageTexts");
    m_output.write("[");
    for (const PageText& page : reading.pageTexts) {
        if (&page != &reading.pageTexts.front())
            m_output.write(",");
        writePage(page);
    }
    m_output.write("]}\n");
}

void JsonPrinter::printClassification(const DocumentInsight& insight)
{
    writeObject(toJson(insight));
}

void JsonPrinter::writeItems(const PageTexts& pages)
{
    m_output.write("[");
    bool isFirst = true;
    for (const PageText& page : pages) {
        for (const ExtractedItem& item : extractItems(page.text, page.pageNumber)) {
            if (!isFirst)
                m_output.write(",");
            isFirst = false;
            m_output.write(toJsonText(toJson(item)));
        }
    }
    m_output.write("]");
}

void JsonPrinter::printItems(const PageTexts& pages)
{
    if (!m_file) {
        writeItems(pages);
        m_output.write("\n");
        return;
    }
    openObject();
    writeKey("items");
    writeItems(pages);
    m_output.write("}\n");
}

void JsonPrinter::printActions(const DocumentInsight::ActionRequired& actions)
{
    writeObject(toJson(actions));
}

void JsonPrinter::printExplanation(const ExplanationResult& explanation)
{
    Json object = {
        {"originalText", toJson(explanation.originalText)}, {"explanation", toJson(explanation.explanation)}};
    if (explanation.simplified)
        object["simplified"] = toJson(*explanation.simplified);
    writeObject(object);
}

void JsonPrinter::printAnalysis(const DocumentInsight& insight, const PageTexts& pages)
{
    openObject();
    const Json object = toJson(insight);
    for (const auto& [key, value] : object.items()) {
        if (key != itemsKey) {
            writeMember(key.c_str(), value);
            continue;
        }
        writeKey(itemsKey);
        writeItems(pages);
    }
    m_output.write("}\n");
}

} // namespace quillo::cli
