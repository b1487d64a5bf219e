// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ReportPrinter.h"

#include "cli/SafeText.h"
#include "cli/TextLayout.h"
#include "understanding/InformationExtraction.h"

#include <algorithm>

namespace quillo::cli {
namespace {

constexpr int labelWidth = 16;
constexpr int typeWidth = 9;
constexpr int indentWidth = 2;
constexpr int pageWidth = 9;
constexpr int reasonWidth = 20;

// A value gets as much room as the page's longest needs, within these.
constexpr int minimumValueWidth = 10;
constexpr int maximumValueWidth = 32;

// Text beside a value needs this much; with less it goes below it.
constexpr int minimumSnippetWidth = 48;
constexpr int minimumDescriptionWidth = 24;

} // namespace

void ReportPrinter::beginFile(const QString& name)
{
    if (!m_isFirstFile)
        m_output.write("\n");
    m_isFirstFile = false;
    m_output.write(
        m_terminal.styled(QLatin1String("==> ") + safeName(name) + QLatin1String(" <=="), Style::bold));
    m_output.write("\n");
}

void ReportPrinter::printHeading(const QString& heading)
{
    m_output.write(m_terminal.styled(heading, Style::bold));
    m_output.write("\n");
}

void ReportPrinter::printFact(const QString& label, const QString& value, Style style)
{
    const int valueWidth = m_terminal.width - labelWidth - cellGap;
    if (valueWidth >= minimumDescriptionWidth) {
        m_output.write(row({{label, Style::dim, labelWidth}, {value, style, valueWidth}}, m_terminal));
        return;
    }
    m_output.write(row({{label, Style::dim, m_terminal.width}}, m_terminal));
    m_output.write(row({{value, style, m_terminal.width - indentWidth}}, m_terminal, indentWidth));
}

void ReportPrinter::printText(const PDFTextExtractor::Reading& reading)
{
    for (const PageText& page : reading.pageTexts) {
        const bool isFirst = &page == &reading.pageTexts.front();
        const QString text = safeText(page.text);
        if (!m_terminal.isInteractive) {
            if (!isFirst)
                m_output.write("\f");
            m_output.write(text);
            continue;
        }
        if (!isFirst)
            m_output.write("\n");
        printHeading(tr("Page %1 of %2").arg(page.pageNumber + 1).arg(reading.totalPages));
        if (text.isEmpty())
            m_output.write(m_terminal.styled(tr("(no text)"), Style::dim));
        m_output.write(text);
        if (!text.endsWith(QLatin1Char('\n')))
            m_output.write("\n");
    }
}

void ReportPrinter::printClassification(const DocumentInsight& insight)
{
    printFact(tr("Document type"), rawValue(insight.documentType), Style::accent);
    printFact(tr("Confidence"), QStringLiteral("%1%").arg(static_cast<int>(insight.confidence * 100)));
    if (!insight.evidence.isEmpty())
        printFact(tr("Evidence"), insight.evidence.join(QLatin1Char('\n')));
    printFact(tr("Summary"), insight.summary);
}

void ReportPrinter::printActions(const DocumentInsight::ActionRequired& actions)
{
    printFact(
        tr("Action required"), actions.required ? tr("Yes") : tr("No"),
        actions.required ? Style::accent : Style::plain);
    const int restWidth = m_terminal.width - indentWidth - pageWidth - reasonWidth - 2 * cellGap;
    for (const DocumentInsight::ActionReason& reason : actions.reasons) {
        const QString page = tr("page %1").arg(reason.pageNumber + 1);
        const QString description = safeLine(reason.description);
        if (restWidth >= minimumDescriptionWidth) {
            m_output.write(
                row({{page, Style::dim, pageWidth},
                     {rawValue(reason.type), Style::bold, reasonWidth},
                     {description, Style::plain, restWidth}},
                    m_terminal, indentWidth));
            continue;
        }
        m_output.write(
            row({{page, Style::dim, pageWidth},
                 {rawValue(reason.type), Style::bold, m_terminal.width - indentWidth - pageWidth - cellGap}},
                m_terminal, indentWidth));
        m_output.write(row(
            {{description, Style::plain, m_terminal.width - 2 * indentWidth}}, m_terminal, 2 * indentWidth));
    }
}

void ReportPrinter::printItem(const ExtractedItem& item, int valueWidth)
{
    const QString value = safeLine(item.value);
    const QString snippet = safeLine(item.sourceSnippet);
    const Cell type = {rawValue(item.type), Style::accent, typeWidth};
    const int snippetWidth = m_terminal.width - indentWidth - typeWidth - valueWidth - 2 * cellGap;
    if (snippetWidth >= minimumSnippetWidth) {
        m_output.write(
            row({type, {value, Style::bold, valueWidth}, {snippet, Style::dim, snippetWidth}}, m_terminal,
                indentWidth));
        return;
    }
    const int besideType = indentWidth + typeWidth + cellGap;
    const int restWidth = m_terminal.width - besideType;
    m_output.write(row({type, {value, Style::bold, restWidth}}, m_terminal, indentWidth));
    m_output.write(row({{snippet, Style::dim, restWidth}}, m_terminal, besideType));
}

void ReportPrinter::printPageItems(const PageText& page, const std::vector<ExtractedItem>& items)
{
    int valueWidth = minimumValueWidth;
    for (const ExtractedItem& item : items) {
        valueWidth = std::clamp(displayWidth(safeLine(item.value)), valueWidth, maximumValueWidth);
        if (valueWidth == maximumValueWidth)
            break;
    }
    printHeading(tr("Page %1").arg(page.pageNumber + 1));
    for (const ExtractedItem& item : items)
        printItem(item, valueWidth);
}

void ReportPrinter::printItems(const PageTexts& pages)
{
    qsizetype count = 0;
    for (const PageText& page : pages) {
        const std::vector<ExtractedItem> items = extractItems(page.text, page.pageNumber);
        if (items.empty())
            continue;
        printPageItems(page, items);
        count += static_cast<qsizetype>(items.size());
    }
    const QString total = count == 0   ? tr("No items found")
                          : count == 1 ? tr("1 item found")
                                       : tr("%1 items found").arg(count);
    m_output.write(total);
    m_output.write("\n");
}

void ReportPrinter::printExplanation(const ExplanationResult& explanation)
{
    const auto printPart = [this](const QString& heading, const QString& text) {
        printHeading(heading);
        const int width = m_terminal.width - indentWidth;
        // Line by line, so that the text is laid out in bounded pieces however long it is.
        for (const QStringView line : QStringView(text).split(u'\n'))
            m_output.write(row({{safeLine(line), Style::plain, width}}, m_terminal, indentWidth));
    };
    printPart(tr("Explanation"), explanation.explanation);
    if (explanation.simplified) {
        m_output.write("\n");
        printPart(tr("In plainer words"), *explanation.simplified);
    }
}

void ReportPrinter::printAnalysis(const DocumentInsight& insight, const PageTexts& pages)
{
    printClassification(insight);
    m_output.write("\n");
    printActions(insight.actionRequired);
    m_output.write("\n");
    printItems(pages);
}

} // namespace quillo::cli
