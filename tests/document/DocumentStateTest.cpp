// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/DocumentState.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace quillo {
namespace {

using Field = DocumentState::Field;

PageTexts pagesOf(std::size_t count, const QString& text)
{
    PageTexts pages;
    for (std::size_t i = 0; i < count; ++i)
        pages.emplace_back(static_cast<std::int64_t>(i), text, false, std::nullopt);
    return pages;
}

TEST(DocumentStateTest, StartsWithoutADocument)
{
    const DocumentState state;

    EXPECT_FALSE(state.url());
    EXPECT_TRUE(state.pageTexts()->empty());
    EXPECT_EQ(state.currentPage(), 0);
    EXPECT_EQ(state.totalPages(), 0);
    EXPECT_FALSE(state.insight());
    EXPECT_FALSE(state.isProcessing());
    EXPECT_EQ(state.selectedText(), QString());
    EXPECT_FALSE(state.hasOCRData());
}

TEST(DocumentStateTest, HoldsWhatItIsGiven)
{
    DocumentState state;
    state.setUrl(QUrl::fromLocalFile(QStringLiteral("/a.pdf")));
    state.setPageTexts(pagesOf(2, QStringLiteral("text")));
    state.setCurrentPage(1);
    state.setTotalPages(2);
    DocumentInsight insight;
    insight.summary = QStringLiteral("summary");
    state.setInsight(insight);
    state.setIsProcessing(true);
    state.setSelectedText(QStringLiteral("selected"));
    state.setHasOCRData(true);

    EXPECT_EQ(state.url(), QUrl::fromLocalFile(QStringLiteral("/a.pdf")));
    EXPECT_EQ(state.pageTexts()->size(), 2U);
    EXPECT_EQ(state.currentPage(), 1);
    EXPECT_EQ(state.totalPages(), 2);
    ASSERT_TRUE(state.insight());
    EXPECT_EQ(state.insight()->summary, QStringLiteral("summary"));
    EXPECT_TRUE(state.isProcessing());
    EXPECT_EQ(state.selectedText(), QStringLiteral("selected"));
    EXPECT_TRUE(state.hasOCRData());
}

/// One assignment that can be told from the field's initial value.
struct Assignment
{
    Field field;
    std::function<void(DocumentState&)> assign;
    std::function<bool(const DocumentState&)> isInitial;
};

std::vector<Assignment> assignments()
{
    return {
        {Field::url, [](auto& state) { state.setUrl(QUrl(QStringLiteral("file:///a"))); },
         [](const auto& state) { return !state.url(); }},
        {Field::pageTexts, [](auto& state) { state.setPageTexts(pagesOf(1, QString())); },
         [](const auto& state) { return state.pageTexts()->empty(); }},
        {Field::currentPage, [](auto& state) { state.setCurrentPage(5); },
         [](const auto& state) { return state.currentPage() == 0; }},
        {Field::totalPages, [](auto& state) { state.setTotalPages(6); },
         [](const auto& state) { return state.totalPages() == 0; }},
        {Field::insight, [](auto& state) { state.setInsight(DocumentInsight{}); },
         [](const auto& state) { return !state.insight(); }},
        {Field::isProcessing, [](auto& state) { state.setIsProcessing(true); },
         [](const auto& state) { return !state.isProcessing(); }},
        {Field::selectedText, [](auto& state) { state.setSelectedText(QStringLiteral("a")); },
         [](const auto& state) { return state.selectedText().isEmpty(); }},
        {Field::hasOCRData, [](auto& state) { state.setHasOCRData(true); },
         [](const auto& state) { return !state.hasOCRData(); }},
    };
}

TEST(DocumentStateTest, AnnouncesEveryFieldBeforeTheNewValueIsStored)
{
    for (const Assignment& assignment : assignments()) {
        DocumentState state;
        std::vector<Field> announced;
        bool wasInitial = false;
        QObject::connect(&state, &DocumentState::willChange, [&](Field field) {
            announced.push_back(field);
            wasInitial = assignment.isInitial(state);
        });
        assignment.assign(state);
        EXPECT_EQ(announced, std::vector{assignment.field});
        EXPECT_TRUE(wasInitial) << "field " << static_cast<int>(assignment.field) << " was stored first";
    }
}

TEST(DocumentStateTest, TellsOfEveryFieldAfterTheNewValueIsStored)
{
    for (const Assignment& assignment : assignments()) {
        DocumentState state;
        std::vector<Field> changed;
        bool wasInitial = true;
        QObject::connect(&state, &DocumentState::didChange, [&](Field field) {
            changed.push_back(field);
            wasInitial = assignment.isInitial(state);
        });
        assignment.assign(state);
        EXPECT_EQ(changed, std::vector{assignment.field});
        EXPECT_FALSE(wasInitial) << "field " << static_cast<int>(assignment.field) << " was not stored yet";
    }
}

TEST(DocumentStateTest, AnEqualValueIsAnAssignmentToo)
{
    DocumentState state;
    int announcements = 0;
    QObject::connect(&state, &DocumentState::willChange, [&] { ++announcements; });
    state.setCurrentPage(0);
    state.setCurrentPage(0);
    EXPECT_EQ(announcements, 2);
}

TEST(DocumentStateTest, ATakenArrayStaysWhatItWas)
{
    DocumentState state;
    state.setPageTexts(pagesOf(2, QStringLiteral("old")));
    const auto taken = state.pageTexts();
    state.setPageTexts(pagesOf(5, QStringLiteral("new")));

    ASSERT_EQ(taken->size(), 2U);
    EXPECT_EQ(taken->front().text, QStringLiteral("old"));
}

TEST(DocumentStateTest, AReaderOnAnotherThreadSeesOneWholeArray)
{
    DocumentState state;
    std::atomic<bool> done = false;
    std::atomic<int> torn = 0;
    std::thread reader([&] {
        while (!done) {
            const auto pages = state.pageTexts();
            // An array of n pages holds n in each of its texts.
            for (const PageText& page : *pages) {
                if (page.text != QString::number(pages->size()))
                    ++torn;
            }
        }
    });
    for (std::size_t count = 0; count < 300; ++count)
        state.setPageTexts(pagesOf(count % 7, QString::number(count % 7)));
    done = true;
    reader.join();
    EXPECT_EQ(torn, 0);
}

} // namespace
} // namespace quillo
