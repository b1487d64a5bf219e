// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdf/TextIndex.h"
#include "pdf/TextLayer.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

// The document as a text.
namespace pdf {
namespace {

using Clock = std::chrono::steady_clock;

// How long matches are collected before they are handed on.
constexpr std::chrono::milliseconds batchTime(20);

TextMatch matchOn(int page, TextRange range)
{
    return {page, static_cast<qint32>(range.location), static_cast<qint32>(range.length)};
}

/// Searches page by page; gives up when cancelled.
void find(
    TextIndex& index, const TextPattern& pattern, const Cancellation& cancellation,
    const PDFDocument::MatchReceiver& receive)
{
    const auto pageCount = index.pageCount(cancellation);
    if (!pageCount)
        return;
    std::vector<TextMatch> matches;
    auto batchStart = Clock::now();
    for (int page = 0; page < *pageCount; ++page) {
        const bool isBatchOver = !index.isAtHand(page) || Clock::now() - batchStart > batchTime;
        if (isBatchOver && !matches.empty()) {
            receive(std::exchange(matches, {}), false);
            batchStart = Clock::now();
        }
        const auto text = index.text(page, cancellation);
        if (!text)
            return;
        for (const TextRange range : pattern.matches(*text))
            matches.push_back(matchOn(page, range));
    }
    if (!cancellation.isCancelled())
        receive(std::move(matches), true);
}

} // namespace

std::optional<PDFSelection>
PDFDocument::selection(TextPosition from, TextPosition to, const Cancellation& cancellation)
{
    if (to < from)
        std::swap(from, to);
    std::vector<PDFSelection::Part> parts;
    QString string;
    const int last = std::min(to.page, pageCount() - 1);
    for (int index = std::max(from.page, 0); index <= last; ++index) {
        if (cancellation.isCancelled())
            return std::nullopt;
        const auto page = this->page(index);
        const auto text = page ? page->text(cancellation) : nullptr;
        if (!text)
            continue;
        const qsizetype start = index == from.page ? from.index : 0;
        const qsizetype end = index == to.page ? to.index : text->string().size();
        const TextRange range = text->clipped({start, end - start});
        if (range.length == 0)
            continue;
        string += QStringView(text->string()).mid(range.location, range.length);
        // The text of pages in between, of which there may be thousands, is not kept.
        const bool isAtEnd = index == from.page || index == to.page;
        parts.push_back({index, range, isAtEnd ? text : nullptr});
    }
    if (parts.empty() || cancellation.isCancelled())
        return std::nullopt;
    return PDFSelection(shared_from_this(), std::move(parts), std::move(string));
}

std::optional<PDFSelection> PDFDocument::selection(const TextMatch& match)
{
    const auto index = textIndex();
    const TextRange range = {match.location, match.length};
    if (index->isAtHand(match.page)) {
        const auto text = index->text(match.page, {});
        if (text && range.location >= 0 && range.length > 0 && range.end() <= text->size()) {
            QString string = text->mid(range.location, range.length);
            return PDFSelection(shared_from_this(), {{match.page, range, nullptr}}, std::move(string));
        }
    }
    return selection({match.page, range.location}, {match.page, range.end()});
}

std::shared_ptr<TextIndex> PDFDocument::textIndex()
{
    const std::lock_guard lock(m_textMutex);
    if (!m_textIndex)
        m_textIndex = TextIndex::begin(shared_from_this());
    return m_textIndex;
}

void PDFDocument::beginIndexing()
{
    textIndex();
}

std::vector<PDFSelection>
PDFDocument::findString(const QString& text, FindOptions options, const Cancellation& cancellation)
{
    std::vector<PDFSelection> selections;
    find(*textIndex(), TextPattern(text, options), cancellation, [&](const auto& matches, bool) {
        for (const TextMatch& match : matches) {
            if (auto found = selection(match))
                selections.push_back(*std::move(found));
        }
    });
    return selections;
}

void PDFDocument::beginFindString(
    const QString& text, FindOptions options, const Cancellation& cancellation, MatchReceiver receive)
{
    std::thread([index = textIndex(), text, options, cancellation, receive = std::move(receive)] {
        find(*index, TextPattern(text, options), cancellation, receive);
    }).detach();
}

} // namespace pdf
