// SPDX-License-Identifier: AGPL-3.0-or-later
#include "json/StrictJson.h"

#include <cmath>
#include <string>

namespace quillo {
namespace {

[[noreturn]] void fail(const char* key, const char* problem)
{
    throw DecodingError(std::string("\"") + key + "\": " + problem);
}

double toFiniteNumber(const Json& value, const char* key)
{
    if (!value.is_number())
        fail(key, "a number is due");
    const double number = value.get<double>();
    if (!std::isfinite(number))
        fail(key, "the number is out of range");
    return number;
}

QByteArray toBytes(const Json& value, const char* key)
{
    const QString text = stringFromJson(value, key);
    const auto decoded =
        QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || text.toLatin1().size() % 4 != 0)
        fail(key, "base64 text is due");
    return *decoded;
}

QString withoutUnpairedSurrogates(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else if (text[i].isSurrogate())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace

JsonObjectReader::JsonObjectReader(const Json& value, const char* what)
    : m_object(value)
{
    if (!value.is_object())
        fail(what, "an object is due");
}

const Json& JsonObjectReader::member(const char* key) const
{
    const auto found = m_object.find(key);
    if (found == m_object.end())
        fail(key, "the key is missing");
    return *found;
}

bool JsonObjectReader::has(const char* key) const
{
    const auto found = m_object.find(key);
    return found != m_object.end() && !found->is_null();
}

QString JsonObjectReader::string(const char* key) const
{
    return stringFromJson(member(key), key);
}

bool JsonObjectReader::boolean(const char* key) const
{
    const Json& value = member(key);
    if (!value.is_boolean())
        fail(key, "true or false is due");
    return value.get<bool>();
}

double JsonObjectReader::number(const char* key) const
{
    return toFiniteNumber(member(key), key);
}

std::int64_t JsonObjectReader::integer(const char* key) const
{
    const Json& value = member(key);
    if (value.is_number_unsigned()) {
        if (value.get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX))
            fail(key, "the integer is out of range");
        return value.get<std::int64_t>();
    }
    if (value.is_number_integer())
        return value.get<std::int64_t>();
    const double number = toFiniteNumber(value, key);
    if (number != std::trunc(number))
        fail(key, "an integer is due");
    // 2^63 itself is the first double above the range.
    if (number < -0x1p63 || number >= 0x1p63)
        fail(key, "the integer is out of range");
    return static_cast<std::int64_t>(number);
}

const Json& JsonObjectReader::array(const char* key) const
{
    const Json& value = member(key);
    if (!value.is_array())
        fail(key, "an array is due");
    return value;
}

const Json& JsonObjectReader::object(const char* key) const
{
    const Json& value = member(key);
    if (!value.is_object())
        fail(key, "an object is due");
    return value;
}

QByteArray JsonObjectReader::base64(const char* key) const
{
    return toBytes(member(key), key);
}

std::optional<double> JsonObjectReader::optionalNumber(const char* key) const
{
    return has(key) ? std::optional(number(key)) : std::nullopt;
}

std::optional<QByteArray> JsonObjectReader::optionalBase64(const char* key) const
{
    return has(key) ? std::optional(base64(key)) : std::nullopt;
}

Json parseJson(const QByteArray& text)
{
    Json value = Json::parse(text.cbegin(), text.cend(), nullptr, false);
    if (value.is_discarded())
        throw DecodingError("the text is not JSON");
    return value;
}

QByteArray toJsonText(const Json& value)
{
    QByteArray text;
    JsonWriter writer([&text](QByteArrayView piece) { text += piece; });
    writer.value(value);
    writer.flush();
    return text;
}

Json toJson(const QString& text)
{
    return Json((text.isValidUtf16() ? text : withoutUnpairedSurrogates(text)).toStdString());
}

QString stringFromJson(const Json& value, const char* what)
{
    if (!value.is_string())
        fail(what, "a string is due");
    return QString::fromStdString(value.get_ref<const std::string&>());
}

} // namespace quillo
