// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/ActionDetection.h"

#include "platform/SystemInfo.h"
#include "understanding/DateParsing.h"
#include "understanding/DateScanner.h"
#include "understanding/KeywordAutomaton.h"

#include <unicode/ubrk.h>

#include <QCoreApplication>

#include <algorithm>
#include <limits>
#include <optional>
#include <span>
#include <vector>

namespace quillo {
namespace {

using ActionReason = DocumentInsight::ActionReason;
using ReasonType = ActionReason::ReasonType;

constexpr QStringView dueDatePhrases[] = {
    u"due date",   u"payment due",     u"due by",     u"deadline",  u"must be received by",
    u"expires on", u"expiration date", u"final date", u"last date",
};

constexpr QStringView paymentPhrases[] = {
    u"amount due",  u"payment required", u"please remit",     u"pay by",
    u"balance due", u"total amount due", u"payment enclosed", u"please pay",
};

constexpr QStringView signaturePhrases[] = {
    u"signature required", u"please sign",    u"sign here", u"signature:",     u"authorized signature",
    u"your signature",     u"signature line", u"signatory", u"please initial",
};

constexpr QStringView submissionPhrases[] = {
    u"please submit", u"must be submitted", u"return this form",    u"send to", u"submit by", u"mail to",
    u"return by",     u"please return",     u"submission deadline",
};

/// One reason for any number of phrases.
struct SimpleAction
{
    ReasonType type;
    std::span<const QStringView> phrases;
    const char* description;
};

constexpr const char* translationContext = "ActionDetector";

constexpr SimpleAction simpleActions[] = {
    {ReasonType::payment, paymentPhrases,
     QT_TRANSLATE_NOOP("ActionDetector", "Payment appears to be required")},
    {ReasonType::signature, signaturePhrases,
     QT_TRANSLATE_NOOP("ActionDetector", "Signature appears to be required")},
    {ReasonType::submission, submissionPhrases,
     QT_TRANSLATE_NOOP("ActionDetector", "Document appears to require submission")},
};

constexpr int charactersAfterPhrase = 100;

/// All phrases of all tables, the due-date ones first.
const KeywordAutomaton& phraseAutomaton()
{
    static const auto* const automaton = [] {
        std::vector<QStringView> phrases(std::begin(dueDatePhrases), std::end(dueDatePhrases));
        for (const SimpleAction& action : simpleActions)
            phrases.insert(phrases.end(), action.phrases.begin(), action.phrases.end());
        return new KeywordAutomaton(phrases);
    }();
    return *automaton;
}

/// Cuts texts after a number of user-perceived characters.
class CharacterCounter
{
public:
    QStringView first(int count, QStringView text)
    {
        UErrorCode error = U_ZERO_ERROR;
        if (m_boundaries.isNull())
            m_boundaries.adoptInstead(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &error));
        const auto size =
            static_cast<int32_t>(std::min<qsizetype>(text.size(), std::numeric_limits<int32_t>::max()));
        ubrk_setText(m_boundaries.getAlias(), text.utf16(), size, &error);
        // Without ICU's data every unit counts as a character.
        if (U_FAILURE(error))
            return text.left(count);
        int32_t end = 0;
        while (count-- > 0 && end < size)
            end = ubrk_next(m_boundaries.getAlias());
        return text.left(end);
    }

private:
    icu::LocalUBreakIteratorPointer m_boundaries;
};

class ActionSearch
{
public:
    explicit ActionSearch(const DateSettings& settings)
        : m_timeZone(settings.timeZone)
        , m_dateStyle(settings.locale)
    {}

    void read(const PageText& page)
    {
        const auto ends = phraseAutomaton().firstEnds(page.text);
        std::span<const std::optional<qsizetype>> rest(ends);
        for (const QStringView phrase : dueDatePhrases) {
            if (const auto end = rest.front())
                addDueDate(phrase, dateAfter(*end, page.text), page.pageNumber);
            rest = rest.subspan(1);
        }
        for (const SimpleAction& action : simpleActions) {
            const auto found = rest.first(action.phrases.size());
            rest = rest.subspan(action.phrases.size());
            if (std::ranges::any_of(found, [](const auto& end) { return end.has_value(); }))
                add(action.type, QCoreApplication::translate(translationContext, action.description),
                    page.pageNumber);
        }
    }

    std::vector<ActionReason> takeReasons() { return std::move(m_reasons); }

private:
    ActionReason& add(ReasonType type, const QString& description, std::int64_t pageNumber)
    {
        return m_reasons.emplace_back(ActionReason{type, description, pageNumber, std::nullopt});
    }

    void addDueDate(QStringView phrase, std::optional<QDate> date, std::int64_t pageNumber)
    {
        const auto beginning = date ? beginningOf(*date, m_timeZone) : std::nullopt;
        if (beginning) {
            const QString text = QCoreApplication::translate(translationContext, "Due date found: %1");
            add(ReasonType::dueDate, text.arg(m_dateStyle.print(*date)), pageNumber).dueDate = beginning;
        } else {
            const QString text = QCoreApplication::translate(translationContext, "Document mentions '%1'");
            add(ReasonType::dueDate, text.arg(phrase), pageNumber);
        }
    }

    /// The offset is one of the lower-cased copy. It is used for the text itself all the same, although each
    /// dotted capital I before it puts it one unit too far; it may lie behind the text's end then.
    std::optional<QDate> dateAfter(qsizetype lowerCasedOffset, QStringView text)
    {
        const QStringView behind = text.mid(std::min(lowerCasedOffset, text.size()));
        const QStringView window = m_characters.first(charactersAfterPhrase, behind);
        DateScanner scanner;
        scanPatterns(ScannedText(window), scanner);
        // A date with slashes goes first even where one with a month's name stands before it.
        for (const auto pattern : {DateScanner::slashed, DateScanner::monthFirst}) {
            const auto& found = scanner.matches[pattern].ranges();
            if (!found.empty())
                return parseDate(window.mid(found.front().start, found.front().end - found.front().start));
        }
        return std::nullopt;
    }

    const QTimeZone m_timeZone;
    MediumDateStyle m_dateStyle;
    CharacterCounter m_characters;
    std::vector<ActionReason> m_reasons;
};

} // namespace

DateSettings DateSettings::system()
{
    return {QTimeZone::systemTimeZone(), SystemInfo::dateLocale()};
}

DocumentInsight::ActionRequired detectActions(const PageTexts& pages, const DateSettings& settings)
{
    ActionSearch search(settings);
    for (const PageText& page : pages)
        search.read(page);
    std::vector<ActionReason> reasons = search.takeReasons();
    const bool required = !reasons.empty();
    return {required, std::move(reasons)};
}

} // namespace quillo
