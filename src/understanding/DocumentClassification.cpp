// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/DocumentClassification.h"

#include "understanding/KeywordAutomaton.h"

#include <QCoreApplication>

#include <algorithm>
#include <optional>
#include <vector>

namespace quillo {
namespace {

using DocumentType = DocumentInsight::DocumentType;

constexpr QStringView billKeywords[] = {
    u"invoice",        u"bill",         u"amount due", u"total amount", u"payment due",
    u"invoice number", u"invoice date", u"subtotal",   u"tax",          u"balance due",
    u"account number", u"billing",      u"charges",    u"statement",
};

constexpr QStringView letterKeywords[] = {
    u"dear",
    u"sincerely",
    u"regards",
    u"yours truly",
    u"best wishes",
    u"kind regards",
    u"to whom it may concern",
    u"dear sir",
    u"dear madam",
    u"cc:",
    u"bcc:",
    u"subject:",
};

constexpr QStringView formKeywords[] = {
    u"form",          u"application",     u"please complete", u"signature required",
    u"date of birth", u"social security", u"checkbox",        u"check one",
    u"fill in",       u"enter your",      u"applicant",       u"form number",
};

constexpr QStringView manualKeywords[] = {
    u"manual",   u"guide",        u"instructions", u"chapter", u"section", u"table of contents",
    u"appendix", u"introduction", u"overview",     u"step 1",  u"step 2",  u"procedure",
    u"warning",  u"caution",      u"note:",
};

constexpr DocumentTypeKeywords tables[] = {
    {DocumentType::bill, billKeywords},
    {DocumentType::letter, letterKeywords},
    {DocumentType::form, formKeywords},
    {DocumentType::manual, manualKeywords},
};

constexpr double leastScore = 0.2;
constexpr qsizetype mostEvidence = 5;

struct Summary
{
    DocumentType type;
    /// %1 is the confidence in percent.
    const char* text;
};

constexpr const char* translationContext = "DocumentClassifier";

constexpr Summary summaries[] = {
    {DocumentType::bill,
     QT_TRANSLATE_NOOP(
         "DocumentClassifier",
         "This appears to be a bill or invoice (%1% confidence). It likely contains payment "
         "information and amounts due.")},
    {DocumentType::letter,
     QT_TRANSLATE_NOOP(
         "DocumentClassifier",
         "This appears to be a letter (%1% confidence). It's likely correspondence or communication.")},
    {DocumentType::form,
     QT_TRANSLATE_NOOP(
         "DocumentClassifier",
         "This appears to be a form (%1% confidence). It may require filling out or signing.")},
    {DocumentType::manual,
     QT_TRANSLATE_NOOP(
         "DocumentClassifier", "This appears to be a manual or guide (%1% confidence). It likely contains "
                               "instructions or reference information.")},
    {DocumentType::unknown,
     QT_TRANSLATE_NOOP("DocumentClassifier", "Could not determine the document type with confidence.")},
};

/// Counts, for every keyword by itself, the occurrences that do not overlap one another, from left to right.
class KeywordCounter
{
public:
    static const KeywordCounter& shared()
    {
        static const auto* const counter = new KeywordCounter;
        return *counter;
    }

    /// In the order of the tables, one table after the other.
    std::vector<qsizetype> count(QStringView text) const
    {
        std::vector<qsizetype> counts(m_keywords.size());
        std::vector<qsizetype> countedTo(m_keywords.size());
        m_automaton.search(text, [&](std::uint32_t keyword, qsizetype end) {
            if (end - m_keywords[keyword].size() < countedTo[keyword])
                return;
            countedTo[keyword] = end;
            ++counts[keyword];
        });
        return counts;
    }

private:
    static std::vector<QStringView> allKeywords()
    {
        std::vector<QStringView> keywords;
        for (const DocumentTypeKeywords& table : tables)
            keywords.insert(keywords.end(), table.keywords.begin(), table.keywords.end());
        return keywords;
    }

    const std::vector<QStringView> m_keywords = allKeywords();
    const KeywordAutomaton m_automaton{m_keywords};
};

struct Score
{
    DocumentType type;
    double score = 0.0;
    QStringList evidence;
};

/// `occurrences` holds a count for every keyword of the table.
Score calculateScore(const DocumentTypeKeywords& table, std::span<const qsizetype> occurrences)
{
    Score result{table.type, 0.0, {}};
    for (std::size_t i = 0; i < table.keywords.size(); ++i) {
        if (occurrences[i] == 0)
            continue;
        result.evidence.append(
            QCoreApplication::translate(translationContext, "Found '%1'").arg(table.keywords[i]));
        result.score += 1.0;
        const qsizetype pieces = occurrences[i] + 1;
        if (pieces >= 3)
            result.score += static_cast<double>(std::min<qsizetype>(pieces, 5) - 2) * 0.2;
    }
    if (result.evidence.size() > mostEvidence)
        result.evidence.resize(mostEvidence);
    result.score /= static_cast<double>(table.keywords.size());
    return result;
}

} // namespace

std::span<const DocumentTypeKeywords> documentTypeKeywords()
{
    return tables;
}

QString generateSummary(DocumentType type, double confidence)
{
    const auto summary = std::ranges::find(summaries, type, &Summary::type);
    QString text = QCoreApplication::translate(translationContext, summary->text);
    return text.replace(QLatin1String("%1"), QString::number(static_cast<int>(confidence * 100)));
}

DocumentInsight classifyText(QStringView text)
{
    const std::vector<qsizetype> counts = KeywordCounter::shared().count(text);
    std::span<const qsizetype> rest(counts);
    std::optional<Score> best;
    for (const DocumentTypeKeywords& table : tables) {
        Score score = calculateScore(table, rest.first(table.keywords.size()));
        rest = rest.subspan(table.keywords.size());
        if (!best || score.score > best->score)
            best = std::move(score);
    }

    DocumentInsight insight;
    if (best->score > leastScore) {
        insight.documentType = best->type;
        insight.confidence = std::min(best->score, 1.0);
        insight.evidence = best->evidence;
        insight.summary = generateSummary(best->type, insight.confidence);
    } else {
        insight.summary = QCoreApplication::translate(
            translationContext, "Could not determine document type with confidence");
    }
    return insight;
}

} // namespace quillo
