// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "json/JsonWriter.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <stdexcept>

namespace quillo {

/// A JSON text that is not what its reader requires. what() names the offending key (UTF-8).
class DecodingError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads one JSON object member by member without any of the silent conversions of a JSON library: a
/// Boolean is no number, a fraction is no integer, a string is nothing but a string. Every member function
/// throws DecodingError, naming the key, when the member is missing or of the wrong type. The value must
/// outlive the reader.
class JsonObjectReader
{
public:
    /// Throws DecodingError, naming `what`, when the value is not an object.
    JsonObjectReader(const Json& value, const char* what);

    QString string(const char* key) const;
    bool boolean(const char* key) const;
    /// A finite number, written with or without a fraction.
    double number(const char* key) const;
    /// A number without a fractional part that fits into 64 bits; 3.0 counts as 3, 3.5 is an error.
    std::int64_t integer(const char* key) const;
    const Json& array(const char* key) const;
    const Json& object(const char* key) const;
    /// Standard base64 with padding.
    QByteArray base64(const char* key) const;

    /// A missing member and null are both "not there".
    bool has(const char* key) const;
    std::optional<double> optionalNumber(const char* key) const;
    std::optional<QByteArray> optionalBase64(const char* key) const;

private:
    const Json& member(const char* key) const;

    const Json& m_object;
};

/// Parses UTF-8 JSON text. Throws DecodingError when it is not JSON.
Json parseJson(const QByteArray& text);

/// The text that JsonWriter writes for the value. Bytes that are not UTF-8 become U+FFFD, so this never
/// fails.
QByteArray toJsonText(const Json& value);

/// A JSON string holding the text; unpaired surrogates become U+FFFD.
Json toJson(const QString& text);

/// Throws DecodingError, naming `what`, when the value is not a string.
QString stringFromJson(const Json& value, const char* what);

} // namespace quillo
