// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsJson.h"

#include "json/ReferenceDate.h"

#include <QMetaType>
#include <QStringList>

#include <cmath>
#include <limits>
#include <string>

namespace quillo {
namespace {

// Metadata from outside must not exhaust the stack.
constexpr int greatestDepth = 512;

Json numberToJson(double number)
{
    if (!std::isfinite(number))
        throw EncodingError("a number that is not finite has no JSON form");
    return number;
}

Json metadataToJson(const QVariantMap& metadata);

Json metadataValueToJson(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return nullptr;
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return static_cast<std::int64_t>(value.toLongLong());
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return static_cast<std::uint64_t>(value.toULongLong());
    case QMetaType::Float:
    case QMetaType::Double:
        return numberToJson(value.toDouble());
    case QMetaType::QString:
        return toJson(value.toString());
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        Json array = Json::array();
        for (const QVariant& element : value.toList())
            array.push_back(metadataValueToJson(element));
        return array;
    }
    case QMetaType::QVariantMap:
        return metadataToJson(value.toMap());
    default:
        throw EncodingError(std::string("a value of the type ") + value.typeName() + " has no JSON form");
    }
}

Json metadataToJson(const QVariantMap& metadata)
{
    Json object = Json::object();
    for (auto entry = metadata.cbegin(); entry != metadata.cend(); ++entry)
        object[toJson(entry.key()).get<std::string>()] = metadataValueToJson(entry.value());
    return object;
}

QVariantMap metadataFromJson(const Json& object, int depth);

QVariant metadataValueFromJson(const Json& value, int depth)
{
    if (depth > greatestDepth)
        throw DecodingError("\"metadata\": nested too deeply");
    switch (value.type()) {
    case Json::value_t::boolean:
        return value.get<bool>();
    case Json::value_t::number_integer:
        return static_cast<qlonglong>(value.get<std::int64_t>());
    case Json::value_t::number_unsigned:
        if (value.get<std::uint64_t>() <= static_cast<std::uint64_t>(std::numeric_limits<qlonglong>::max()))
            return static_cast<qlonglong>(value.get<std::uint64_t>());
        return static_cast<qulonglong>(value.get<std::uint64_t>());
    case Json::value_t::number_float:
        return value.get<double>();
    case Json::value_t::string:
        return stringFromJson(value, "metadata");
    case Json::value_t::array: {
        QVariantList list;
        for (const Json& element : value)
            list.append(metadataValueFromJson(element, depth + 1));
        return list;
    }
    case Json::value_t::object:
        return metadataFromJson(value, depth + 1);
    default:
        return QVariant::fromValue(nullptr);
    }
}

QVariantMap metadataFromJson(const Json& object, int depth)
{
    QVariantMap metadata;
    for (const auto& [key, value] : object.items())
        metadata.insert(QString::fromStdString(key), metadataValueFromJson(value, depth));
    return metadata;
}

QVariantMap metadataFromText(const QString& text)
{
    try {
        const Json value = parseJson(text.toUtf8());
        return value.is_object() ? metadataFromJson(value, 1) : QVariantMap();
    } catch (const DecodingError&) {
        return {};
    }
}

} // namespace

Json toJson(const AnalyticsEvent& event)
{
    Json value = Json::object();
    value["deviceID"] = toJson(event.deviceID);
    value["eventType"] = toJson(rawValue(event.eventType));
    value["timestamp"] = numberToJson(toReferenceSeconds(event.timestamp));
    value["metadata"] = toJsonText(metadataToJson(event.metadata)).toStdString();
    return value;
}

Json toJson(const AnalyticsBatch& batch)
{
    Json events = Json::array();
    for (const AnalyticsEvent& event : batch.events)
        events.push_back(toJson(event));
    Json value = Json::object();
    value["deviceID"] = toJson(batch.deviceID);
    value["events"] = std::move(events);
    return value;
}

AnalyticsEvent analyticsEventFromJson(const Json& value)
{
    const JsonObjectReader reader(value, "AnalyticsEvent");
    AnalyticsEvent event;
    event.deviceID = reader.string("deviceID");
    const QString type = reader.string("eventType");
    const auto found = eventTypeFromRawValue(type);
    if (!found)
        throw DecodingError("\"eventType\": unknown value '" + type.toStdString() + "'");
    event.eventType = *found;
    event.timestamp = fromReferenceSeconds(reader.number("timestamp"));
    event.metadata = metadataFromText(reader.string("metadata"));
    return event;
}

AnalyticsBatch analyticsBatchFromJson(const Json& value)
{
    const JsonObjectReader reader(value, "AnalyticsBatch");
    AnalyticsBatch batch;
    batch.deviceID = reader.string("deviceID");
    for (const Json& event : reader.array("events"))
        batch.events.push_back(analyticsEventFromJson(event));
    return batch;
}

} // namespace quillo
