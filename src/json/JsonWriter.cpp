// SPDX-License-Identifier: AGPL-3.0-or-later
#include "json/JsonWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <utility>

namespace quillo {
namespace {

// Text is handed on when it has grown to this.
constexpr qsizetype pieceSize = 65536;

// Long text is converted in parts of so many UTF-16 units.
constexpr qsizetype partSize = 16384;

// More than any number takes.
constexpr std::size_t longestNumber = 32;

// The first whole number that a 64-bit integer cannot hold.
constexpr double integerLimit = 0x1p63;

template <typename Number>
void appendDigits(QByteArray& text, Number value)
{
    std::array<char, longestNumber> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text.append(digits.data(), end - digits.data());
}

bool needsEscape(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 || byte == '"' || byte == '\\';
}

void appendEscape(QByteArray& text, char byte)
{
    constexpr auto shortEscapes = QLatin1String("\"\\\b\f\n\r\t");
    constexpr auto letters = QLatin1String("\"\\bfnrt");
    const qsizetype known = shortEscapes.indexOf(QLatin1Char(byte));
    text += '\\';
    if (known >= 0)
        text += letters[known].toLatin1();
    else
        text += "u00" + QByteArray::number(static_cast<int>(byte), 16).rightJustified(2, '0');
}

/// UTF-8 with U+FFFD for every surrogate that has no partner.
QByteArray toValidUtf8(QStringView text)
{
    if (text.isValidUtf16())
        return text.toUtf8();
    QString repaired = text.toString();
    for (qsizetype i = 0; i < repaired.size(); ++i) {
        if (repaired[i].isHighSurrogate() && i + 1 < repaired.size() && repaired[i + 1].isLowSurrogate())
            ++i;
        else if (repaired[i].isSurrogate())
            repaired[i] = QChar::ReplacementCharacter;
    }
    return repaired.toUtf8();
}

} // namespace

void JsonWriter::open(char bracket)
{
    beginValue();
    m_text += bracket;
    m_needsComma = false;
}

void JsonWriter::close(char bracket)
{
    m_text += bracket;
    endValue();
}

void JsonWriter::beginValue()
{
    if (m_needsComma)
        m_text += ',';
}

void JsonWriter::endValue()
{
    m_needsComma = true;
    if (m_text.size() >= pieceSize)
        flush();
}

void JsonWriter::flush()
{
    m_sink(m_text);
    // The memory stays for the next piece.
    m_text.resize(0);
}

void JsonWriter::restart()
{
    m_text.resize(0);
    m_needsComma = false;
}

void JsonWriter::key(QByteArrayView name)
{
    beginValue();
    appendQuoted(name);
    m_text += ':';
    m_needsComma = false;
}

void JsonWriter::text(QStringView value)
{
    beginValue();
    m_text += '"';
    while (!value.isEmpty()) {
        qsizetype size = std::min(value.size(), partSize);
        // A pair of surrogates stays together.
        if (size < value.size() && value[size - 1].isHighSurrogate())
            --size;
        appendEscaped(toValidUtf8(value.first(size)));
        value = value.sliced(size);
        if (m_text.size() >= pieceSize)
            flush();
    }
    m_text += '"';
    endValue();
}

void JsonWriter::number(double value)
{
    beginValue();
    if (!std::isfinite(value))
        m_text += "null";
    else if (value == std::trunc(value) && std::abs(value) < integerLimit)
        appendDigits(m_text, static_cast<std::int64_t>(value));
    else
        appendDigits(m_text, value);
    endValue();
}

void JsonWriter::integer(std::int64_t value)
{
    beginValue();
    appendDigits(m_text, value);
    endValue();
}

void JsonWriter::boolean(bool value)
{
    beginValue();
    m_text += value ? "true" : "false";
    endValue();
}

void JsonWriter::null()
{
    beginValue();
    m_text += "null";
    endValue();
}

void JsonWriter::rect(const QRectF& value)
{
    const auto pair = [this](double first, double second) {
        beginArray();
        number(first);
        number(second);
        endArray();
    };
    beginArray();
    pair(value.x(), value.y());
    pair(value.width(), value.height());
    endArray();
}

void JsonWriter::value(const Json& value)
{
    if (value.is_object()) {
        beginObject();
        for (const auto& [name, member] : value.items()) {
            key(name);
            this->value(member);
        }
        endObject();
    } else if (value.is_array()) {
        beginArray();
        for (const Json& element : value)
            this->value(element);
        endArray();
    } else if (value.is_string()) {
        beginValue();
        appendQuoted(value.get_ref<const std::string&>());
        endValue();
    } else if (value.is_number_float()) {
        number(value.get<double>());
    } else {
        beginValue();
        m_text += value.dump().c_str();
        endValue();
    }
}

void JsonWriter::appendQuoted(QByteArrayView utf8)
{
    m_text += '"';
    if (utf8.isValidUtf8())
        appendEscaped(utf8);
    else
        appendEscaped(QString::fromUtf8(utf8).toUtf8());
    m_text += '"';
}

void JsonWriter::appendEscaped(QByteArrayView utf8)
{
    for (const char* rest = utf8.begin(); rest != utf8.end();) {
        const char* const special = std::find_if(rest, utf8.end(), needsEscape);
        m_text.append(rest, special - rest);
        rest = special;
        if (rest != utf8.end())
            appendEscape(m_text, *rest++);
    }
}

Json toJson(const QRectF& rect)
{
    return Json::array({Json::array({rect.x(), rect.y()}), Json::array({rect.width(), rect.height()})});
}

} // namespace quillo
