// SPDX-License-Identifier: AGPL-3.0-or-later
#include "insight/InsightJson.h"

#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace quillo {
namespace {

using DocumentType = DocumentInsight::DocumentType;
using ReasonType = DocumentInsight::ActionReason::ReasonType;
using testing::HasSubstr;

DocumentInsight sampleInsight()
{
    DocumentInsight::ActionReason due;
    due.type = ReasonType::dueDate;
    due.description = QStringLiteral("Due date found: Jan 15, 2024");
    due.pageNumber = 2;
    due.dueDate = PointInTime{726969600.123456};

    ExtractedItem item;
    item.type = ExtractedItem::ItemType::amount;
    item.value = QStringLiteral("$1,234.50");
    item.confidence = 0.95;
    item.pageNumber = 1;
    item.sourceSnippet = QStringLiteral("...pay $1,234.50 now...");
    item.boundingBox = QRectF(10.5, 20, 30, 12);

    DocumentInsight insight;
    insight.documentType = DocumentType::bill;
    insight.confidence = 0.25;
    insight.evidence = {QStringLiteral("Found 'invoice'")};
    insight.actionRequired = {true, {due}};
    insight.extractedItems = {item};
    insight.summary = QStringLiteral("A bill.");
    return insight;
}

std::string decodingErrorOf(const Json& value)
{
    try {
        documentInsightFromJson(value);
    } catch (const DecodingError& error) {
        return error.what();
    }
    return "no error";
}

TEST(DocumentInsightTest, MatchesRawValuesExactly)
{
    EXPECT_EQ(documentTypeFromRawValue(u"bill"), std::nullopt);
    EXPECT_EQ(documentTypeFromRawValue(u"Bill / Invoice "), std::nullopt);
    EXPECT_EQ(documentTypeFromRawValue(u"Bill / Invoice"), DocumentType::bill);
    EXPECT_EQ(documentTypeFromRawValue(u"Manual / Guide"), DocumentType::manual);
    EXPECT_EQ(reasonTypeFromRawValue(u"due date"), std::nullopt);
    EXPECT_EQ(reasonTypeFromRawValue(u"Due Date"), ReasonType::dueDate);
    EXPECT_EQ(itemTypeFromRawValue(u"Amount"), std::nullopt);
    EXPECT_EQ(itemTypeFromRawValue(u"amount"), ExtractedItem::ItemType::amount);
}

TEST(DocumentInsightTest, NamesEveryCaseAndFindsItAgain)
{
    for (const auto type :
         {DocumentType::bill, DocumentType::letter, DocumentType::form, DocumentType::manual,
          DocumentType::unknown})
        EXPECT_EQ(documentTypeFromRawValue(rawValue(type)), type);
    for (const auto type :
         {ReasonType::dueDate, ReasonType::payment, ReasonType::signature, ReasonType::submission})
        EXPECT_EQ(reasonTypeFromRawValue(rawValue(type)), type);
    using ItemType = ExtractedItem::ItemType;
    for (const auto type :
         {ItemType::date, ItemType::amount, ItemType::reference, ItemType::email, ItemType::phone,
          ItemType::address})
        EXPECT_EQ(itemTypeFromRawValue(rawValue(type)), type);
}

TEST(DocumentInsightTest, HasTheseRawValues)
{
    using ItemType = ExtractedItem::ItemType;
    EXPECT_EQ(rawValue(DocumentType::bill), QStringLiteral("Bill / Invoice"));
    EXPECT_EQ(rawValue(DocumentType::letter), QStringLiteral("Letter"));
    EXPECT_EQ(rawValue(DocumentType::form), QStringLiteral("Form"));
    EXPECT_EQ(rawValue(DocumentType::manual), QStringLiteral("Manual / Guide"));
    EXPECT_EQ(rawValue(DocumentType::unknown), QStringLiteral("Unknown"));
    EXPECT_EQ(rawValue(ReasonType::dueDate), QStringLiteral("Due Date"));
    EXPECT_EQ(rawValue(ReasonType::payment), QStringLiteral("Payment Required"));
    EXPECT_EQ(rawValue(ReasonType::signature), QStringLiteral("Signature Required"));
    EXPECT_EQ(rawValue(ReasonType::submission), QStringLiteral("Submission Required"));
    EXPECT_EQ(rawValue(ItemType::date), QStringLiteral("date"));
    EXPECT_EQ(rawValue(ItemType::amount), QStringLiteral("amount"));
    EXPECT_EQ(rawValue(ItemType::reference), QStringLiteral("reference"));
    EXPECT_EQ(rawValue(ItemType::email), QStringLiteral("email"));
    EXPECT_EQ(rawValue(ItemType::phone), QStringLiteral("phone"));
    EXPECT_EQ(rawValue(ItemType::address), QStringLiteral("address"));
}

TEST(ExtractedItemTest, HasAnIdentityOfItsOwn)
{
    EXPECT_NE(ExtractedItem().id, ExtractedItem().id);
}

TEST(InsightJsonTest, KeepsTheIdentityOfAnItem)
{
    const ExtractedItem item = sampleInsight().extractedItems.front();
    EXPECT_EQ(extractedItemFromJson(toJson(item)).id, item.id);
}

TEST(InsightJsonTest, WritesAnItemAsItsValueIsWritten)
{
    QByteArray text;
    JsonWriter writer([&text](QByteArrayView piece) { text += piece; });
    for (const ExtractedItem& item : {sampleInsight().extractedItems.front(), ExtractedItem()}) {
        text.clear();
        writer.restart();
        write(writer, item);
        writer.flush();
        EXPECT_EQ(text, toJsonText(toJson(item)));
    }
}

TEST(InsightJsonTest, WritesOptionalMembersOnlyWhenPresent)
{
    DocumentInsight::ActionReason reason;
    reason.type = ReasonType::payment;
    EXPECT_EQ(toJson(reason).size(), 3U);
    reason.dueDate = PointInTime{86400};
    EXPECT_EQ(toJson(reason)["dueDate"].get<double>(), 86400.0);
    EXPECT_FALSE(toJson(ExtractedItem()).contains("boundingBox"));
}

TEST(InsightJsonTest, WritesTheKeysInTheOrderOfTheMembers)
{
    QStringList keys;
    const Json value = toJson(sampleInsight());
    for (const auto& [key, member] : value.items())
        keys.append(QString::fromStdString(key));
    EXPECT_EQ(
        keys,
        (QStringList{
            QStringLiteral("documentType"), QStringLiteral("confidence"), QStringLiteral("evidence"),
            QStringLiteral("actionRequired"), QStringLiteral("extractedItems"), QStringLiteral("summary")}));
}

TEST(InsightJsonTest, WritesThisTextAndReadsIt)
{
    const char* text =
        R"json({"documentType":"Bill / Invoice","confidence":0.25,"evidence":["Found 'invoice'"],)json"
        R"json("actionRequired":{"required":true,"reasons":[{"type":"Due Date",)json"
        R"json("description":"Due date found: Jan 15, 2024","pageNumber":2,"dueDate":726969600.123456}]},)json"
        R"json("extractedItems":[{"id":"6F9619FF-8B86-D011-B42D-00CF4FC964FF","type":"amount",)json"
        R"json("value":"$1,234.50","confidence":0.95,"pageNumber":1,)json"
        R"json("sourceSnippet":"...pay $1,234.50 now...",)json"
        R"json("boundingBox":[[10.5,20],[30,12]]}],"summary":"A bill."})json";
    DocumentInsight insight = sampleInsight();
    insight.extractedItems[0].id = QUuid(QStringLiteral("6f9619ff-8b86-d011-b42d-00cf4fc964ff"));
    EXPECT_EQ(toJsonText(toJson(insight)), QByteArray(text));

    const DocumentInsight readBack = documentInsightFromJson(parseJson(text));
    EXPECT_EQ(readBack.summary, QStringLiteral("A bill."));
    EXPECT_EQ(
        readBack.actionRequired.reasons.at(0).description, QStringLiteral("Due date found: Jan 15, 2024"));
    EXPECT_EQ(readBack.actionRequired.reasons.at(0).pageNumber, 2);
    EXPECT_EQ(readBack.extractedItems.at(0).sourceSnippet, QStringLiteral("...pay $1,234.50 now..."));
    EXPECT_EQ(readBack.extractedItems.at(0).value, QStringLiteral("$1,234.50"));
    EXPECT_EQ(readBack.extractedItems.at(0).boundingBox, QRectF(10.5, 20, 30, 12));
}

TEST(InsightJsonTest, ReadsBackWhatItWrote)
{
    const DocumentInsight insight = sampleInsight();
    const Json value = parseJson(toJsonText(toJson(insight)));
    const DocumentInsight readBack = documentInsightFromJson(value);
    EXPECT_EQ(readBack.documentType, insight.documentType);
    EXPECT_EQ(readBack.evidence, insight.evidence);
    EXPECT_EQ(readBack.actionRequired.reasons.at(0).dueDate, insight.actionRequired.reasons.at(0).dueDate);
    EXPECT_EQ(readBack.extractedItems.at(0).boundingBox, insight.extractedItems.at(0).boundingBox);
    EXPECT_EQ(toJson(readBack), value);
}

TEST(InsightJsonTest, RequiresEveryMemberThatIsNotOptional)
{
    const Json whole = toJson(sampleInsight());
    for (const auto& [key, member] : whole.items()) {
        Json value = whole;
        value.erase(key);
        EXPECT_THAT(decodingErrorOf(value), HasSubstr('"' + key + '"'));
    }
    for (const auto& [key, member] : whole["extractedItems"][0].items()) {
        if (key == "boundingBox")
            continue;
        Json value = whole;
        value["extractedItems"][0].erase(key);
        EXPECT_THAT(decodingErrorOf(value), HasSubstr('"' + key + '"'));
    }
    for (const auto& [key, member] : whole["actionRequired"]["reasons"][0].items()) {
        if (key == "dueDate")
            continue;
        Json value = whole;
        value["actionRequired"]["reasons"][0].erase(key);
        EXPECT_THAT(decodingErrorOf(value), HasSubstr('"' + key + '"'));
    }
}

TEST(InsightJsonTest, RefusesWrongTypesAndNamesTheKey)
{
    const auto errorWith = [](auto&& change) {
        Json value = toJson(sampleInsight());
        change(value);
        return decodingErrorOf(value);
    };
    EXPECT_THAT(errorWith([](Json& v) { v["documentType"] = "bill"; }), HasSubstr("documentType"));
    EXPECT_THAT(errorWith([](Json& v) { v["confidence"] = true; }), HasSubstr("confidence"));
    EXPECT_THAT(errorWith([](Json& v) { v["confidence"] = "0.5"; }), HasSubstr("confidence"));
    EXPECT_THAT(errorWith([](Json& v) { v["evidence"][0] = 1; }), HasSubstr("evidence"));
    EXPECT_THAT(errorWith([](Json& v) { v["actionRequired"]["required"] = 1; }), HasSubstr("required"));
    EXPECT_THAT(
        errorWith([](Json& v) { v["extractedItems"][0]["pageNumber"] = 1.5; }), HasSubstr("pageNumber"));
    EXPECT_THAT(
        errorWith([](Json& v) { v["extractedItems"][0]["pageNumber"] = false; }), HasSubstr("pageNumber"));
    EXPECT_THAT(errorWith([](Json& v) { v["extractedItems"][0]["id"] = "no UUID"; }), HasSubstr("id"));
    EXPECT_THAT(
        errorWith([](Json& v) {
            v["extractedItems"][0]["boundingBox"] = Json::array({1, 2});
        }),
        HasSubstr("boundingBox"));
    EXPECT_THAT(errorWith([](Json& v) { v = Json::array(); }), HasSubstr("DocumentInsight"));
}

TEST(InsightJsonTest, AcceptsNullForAnAbsentOptional)
{
    Json value = toJson(sampleInsight());
    value["actionRequired"]["reasons"][0]["dueDate"] = nullptr;
    EXPECT_EQ(documentInsightFromJson(value).actionRequired.reasons.at(0).dueDate, std::nullopt);
}

} // namespace
} // namespace quillo
