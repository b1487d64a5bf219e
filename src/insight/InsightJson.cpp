// SPDX-License-Identifier: AGPL-3.0-or-later
#include "insight/InsightJson.h"

#include "json/ReferenceDate.h"

namespace quillo {
namespace {

template <typename Enum>
Enum requireCase(std::optional<Enum> found, const char* key, const QString& name)
{
    if (!found)
        throw DecodingError(std::string("\"") + key + "\": unknown value '" + name.toStdString() + "'");
    return *found;
}

double elementNumber(const Json& value, const char* key)
{
    if (!value.is_number())
        throw DecodingError(std::string("\"") + key + "\": a number is due");
    return value.get<double>();
}

QRectF rectFromJson(const Json& value, const char* key)
{
    const auto isPair = [](const Json& pair) { return pair.is_array() && pair.size() == 2; };
    if (!isPair(value) || !isPair(value[0]) || !isPair(value[1]))
        throw DecodingError(std::string("\"") + key + "\": a rectangle [[x, y], [width, height]] is due");
    return QRectF(
        elementNumber(value[0][0], key), elementNumber(value[0][1], key), elementNumber(value[1][0], key),
        elementNumber(value[1][1], key));
}

/// Puts members into an object.
struct ValueMembers
{
    Json& object;

    void text(const char* key, const QString& value) const { object[key] = toJson(value); }
    void number(const char* key, double value) const { object[key] = value; }
    void integer(const char* key, std::int64_t value) const { object[key] = value; }
    void rect(const char* key, const QRectF& value) const { object[key] = toJson(value); }
};

/// Writes members of the object that is open.
struct WrittenMembers
{
    JsonWriter& writer;

    void text(const char* key, const QString& value) const
    {
        writer.key(key);
        writer.text(value);
    }

    void number(const char* key, double value) const
    {
        writer.key(key);
        writer.number(value);
    }

    void integer(const char* key, std::int64_t value) const
    {
        writer.key(key);
        writer.integer(value);
    }

    void rect(const char* key, const QRectF& value) const
    {
        writer.key(key);
        writer.rect(value);
    }
};

/// Hands the item's members to whatever makes JSON of them. A document may hold a million items, so they are
/// also written without becoming values first.
template <typename Members>
void describe(const ExtractedItem& item, const Members& members)
{
    members.text("id", item.id.toString(QUuid::WithoutBraces).toUpper());
    members.text("type", rawValue(item.type));
    members.text("value", item.value);
    members.number("confidence", item.confidence);
    members.integer("pageNumber", item.pageNumber);
    members.text("sourceSnippet", item.sourceSnippet);
    if (item.boundingBox)
        members.rect("boundingBox", *item.boundingBox);
}

} // namespace

Json toJson(const DocumentInsight::ActionReason& reason)
{
    Json value = Json::object();
    value["type"] = toJson(rawValue(reason.type));
    value["description"] = toJson(reason.description);
    value["pageNumber"] = reason.pageNumber;
    if (reason.dueDate)
        value["dueDate"] = toReferenceSeconds(*reason.dueDate);
    return value;
}

Json toJson(const DocumentInsight::ActionRequired& actions)
{
    Json reasons = Json::array();
    for (const auto& reason : actions.reasons)
        reasons.push_back(toJson(reason));
    Json value = Json::object();
    value["required"] = actions.required;
    value["reasons"] = std::move(reasons);
    return value;
}

Json toJson(const ExtractedItem& item)
{
    Json value = Json::object();
    describe(item, ValueMembers{value});
    return value;
}

void write(JsonWriter& writer, const ExtractedItem& item)
{
    writer.beginObject();
    describe(item, WrittenMembers{writer});
    writer.endObject();
}

Json toJson(const std::vector<ExtractedItem>& items)
{
    Json value = Json::array();
    for (const auto& item : items)
        value.push_back(toJson(item));
    return value;
}

Json toJson(const DocumentInsight& insight)
{
    Json evidence = Json::array();
    for (const QString& line : insight.evidence)
        evidence.push_back(toJson(line));
    Json value = Json::object();
    value["documentType"] = toJson(rawValue(insight.documentType));
    value["confidence"] = insight.confidence;
    value["evidence"] = std::move(evidence);
    value["actionRequired"] = toJson(insight.actionRequired);
    value["extractedItems"] = toJson(insight.extractedItems);
    value["summary"] = toJson(insight.summary);
    return value;
}

DocumentInsight::ActionReason actionReasonFromJson(const Json& value)
{
    const JsonObjectReader reader(value, "ActionReason");
    const QString type = reader.string("type");
    DocumentInsight::ActionReason reason;
    reason.type = requireCase(reasonTypeFromRawValue(type), "type", type);
    reason.description = reader.string("description");
    reason.pageNumber = reader.integer("pageNumber");
    if (const auto seconds = reader.optionalNumber("dueDate"))
        reason.dueDate = fromReferenceSeconds(*seconds);
    return reason;
}

DocumentInsight::ActionRequired actionRequiredFromJson(const Json& value)
{
    const JsonObjectReader reader(value, "ActionRequired");
    DocumentInsight::ActionRequired actions;
    actions.required = reader.boolean("required");
    for (const Json& reason : reader.array("reasons"))
        actions.reasons.push_back(actionReasonFromJson(reason));
    return actions;
}

ExtractedItem extractedItemFromJson(const Json& value)
{
    const JsonObjectReader reader(value, "ExtractedItem");
    const QString id = reader.string("id");
    const QString type = reader.string("type");
    ExtractedItem item;
    item.id = QUuid::fromString(id);
    // The null identifier is valid text, so ask for the text and not for the value.
    if (item.id.toString(QUuid::WithoutBraces).compare(id, Qt::CaseInsensitive) != 0)
        throw DecodingError("\"id\": UUID text is due");
    item.type = requireCase(itemTypeFromRawValue(type), "type", type);
    item.value = reader.string("value");
    item.confidence = reader.number("confidence");
    item.pageNumber = reader.integer("pageNumber");
    item.sourceSnippet = reader.string("sourceSnippet");
    if (reader.has("boundingBox"))
        item.boundingBox = rectFromJson(reader.array("boundingBox"), "boundingBox");
    return item;
}

DocumentInsight documentInsightFromJson(const Json& value)
{
    const JsonObjectReader reader(value, "DocumentInsight");
    const QString type = reader.string("documentType");
    DocumentInsight insight;
    insight.documentType = requireCase(documentTypeFromRawValue(type), "documentType", type);
    insight.confidence = reader.number("confidence");
    for (const Json& line : reader.array("evidence"))
        insight.evidence.append(stringFromJson(line, "evidence"));
    insight.actionRequired = actionRequiredFromJson(reader.object("actionRequired"));
    for (const Json& item : reader.array("extractedItems"))
        insight.extractedItems.push_back(extractedItemFromJson(item));
    insight.summary = reader.string("summary");
    return insight;
}

} // namespace quillo
