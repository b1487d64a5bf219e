// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/TextExplanation.h"

#include "understanding/KeywordAutomaton.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <span>
#include <vector>

namespace quillo {
namespace {

struct Replacement
{
    QStringView phrase;
    QStringView plain;
};

/// The order is part of what the replacement does.
constexpr Replacement replacements[] = {
    {u"pursuant to", u"according to"},
    {u"notwithstanding", u"despite"},
    {u"hereafter", u"from now on"},
    {u"herein", u"in this document"},
    {u"thereof", u"of it"},
    {u"therein", u"in it"},
    {u"whereby", u"by which"},
    {u"whereas", u"while"},
    {u"aforementioned", u"mentioned before"},
    {u"heretofore", u"until now"},
    {u"hereinafter", u"from this point"},
    {u"commence", u"begin"},
    {u"utilize", u"use"},
    {u"terminate", u"end"},
    {u"remuneration", u"payment"},
    {u"aggregate", u"total"},
};

/// Fires when the passage holds the word and, where there is a second one, that as well.
struct Trigger
{
    QStringView word;
    QStringView otherWord = {};
};

constexpr Trigger legalTriggers[] = {{u"pursuant"}, {u"notwithstanding"}, {u"herein"}, {u"thereof"}};
constexpr Trigger financialTriggers[] = {{u"remuneration"}, {u"compensation"}, {u"aggregate amount"}};
constexpr Trigger obligationTriggers[] = {{u"shall"}, {u"must"}, {u"required to"}};
constexpr Trigger timeTriggers[] = {{u"within"}, {u"deadline"}, {u"by", u"date"}};

/// Any one of the triggers gives the sentence.
struct Category
{
    std::span<const Trigger> triggers;
    const char* sentence;
};

constexpr const char* translationContext = "TextExplainer";

constexpr Category categories[] = {
    {legalTriggers, QT_TRANSLATE_NOOP("TextExplainer", "This appears to be legal or formal language.")},
    {financialTriggers,
     QT_TRANSLATE_NOOP("TextExplainer", "This text discusses financial or payment terms.")},
    {obligationTriggers,
     QT_TRANSLATE_NOOP("TextExplainer", "This text describes obligations or requirements.")},
    {timeTriggers, QT_TRANSLATE_NOOP("TextExplainer", "This text includes time-sensitive information.")},
};

QString translated(const char* text)
{
    return QCoreApplication::translate(translationContext, text);
}

/// The triggers' words and which of them a passage holds.
class TriggerWords
{
public:
    static const TriggerWords& shared()
    {
        static const auto* const words = new TriggerWords;
        return *words;
    }

    std::vector<QStringView> wordsIn(QStringView passage) const
    {
        const auto ends = m_automaton.firstEnds(passage);
        std::vector<QStringView> found;
        for (std::size_t i = 0; i < ends.size(); ++i) {
            if (ends[i])
                found.push_back(m_words[i]);
        }
        return found;
    }

private:
    static std::vector<QStringView> allWords()
    {
        std::vector<QStringView> words;
        for (const Category& category : categories) {
            for (const Trigger& trigger : category.triggers) {
                words.push_back(trigger.word);
                if (!trigger.otherWord.isEmpty())
                    words.push_back(trigger.otherWord);
            }
        }
        return words;
    }

    const std::vector<QStringView> m_words = allWords();
    const KeywordAutomaton m_automaton{m_words};
};

} // namespace

QString simplifyText(const QString& passage)
{
    QString text = passage;
    for (const Replacement& replacement : replacements)
        text.replace(
            replacement.phrase.data(), replacement.phrase.size(), replacement.plain.data(),
            replacement.plain.size(), Qt::CaseInsensitive);
    return text;
}

QString generateBasicExplanation(QStringView passage)
{
    const std::vector<QStringView> words = TriggerWords::shared().wordsIn(passage);
    const auto holds = [&](QStringView word) { return std::ranges::find(words, word) != words.end(); };
    const auto fires = [&](const Trigger& trigger) {
        return holds(trigger.word) && (trigger.otherWord.isEmpty() || holds(trigger.otherWord));
    };
    QStringList sentences;
    for (const Category& category : categories) {
        if (std::ranges::any_of(category.triggers, fires))
            sentences.append(translated(category.sentence));
    }
    if (sentences.isEmpty())
        return translated(
            "This is the selected text from your document. Without advanced language processing, "
            "detailed explanation is limited. Consider the context within the document.");
    return translated(
               "Analysis: %1\n\nNote: This is a basic analysis. True explanation would require advanced "
               "language understanding capabilities.")
        .arg(sentences.join(QLatin1Char(' ')));
}

ExplanationResult explainText(const QString& passage)
{
    return {passage, generateBasicExplanation(passage), simplifyText(passage)};
}

} // namespace quillo
