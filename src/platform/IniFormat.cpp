// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/IniFormat.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quillo {
namespace {

constexpr QByteArrayView firstLine =
    "; Settings of Quillo. This line and the last one frame the whole file.\n";
constexpr QByteArrayView lastLine = "; End of settings.\n";
constexpr QByteArrayView byteOrderMark = "\xef\xbb\xbf";

constexpr QLatin1String bytesPrefix("@ByteArray(");
constexpr QLatin1String textPrefix("@String(");
constexpr QLatin1String generalSection("General");

constexpr std::array<std::pair<char, char>, 10> escapes{{
    {'\\', '\\'},
    {'"', '"'},
    {'n', '\n'},
    {'r', '\r'},
    {'t', '\t'},
    {'a', '\a'},
    {'b', '\b'},
    {'f', '\f'},
    {'v', '\v'},
    {'0', '\0'},
}};

bool isHexDigit(char16_t c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

bool isPlainInKey(char16_t c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' ||
           c == u'-' || c == u'.';
}

// Keys: "%20" and "%U20AC" stand for characters, a backslash for the solidus of a nested section.
std::optional<QString> unescapedKey(QByteArrayView text)
{
    QString key;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '\\') {
            key += u'/';
        } else if (text[i] == '%') {
            const bool wide = i + 1 < text.size() && text[i + 1] == 'U';
            const qsizetype start = i + (wide ? 2 : 1);
            const qsizetype length = wide ? 4 : 2;
            if (start + length > text.size())
                return std::nullopt;
            bool ok = false;
            const ushort code = text.sliced(start, length).toByteArray().toUShort(&ok, 16);
            if (!ok)
                return std::nullopt;
            key += QChar(code);
            i = start + length - 1;
        } else {
            key += QLatin1Char(text[i]);
        }
    }
    return key;
}

QByteArray escapedKey(QStringView key)
{
    QByteArray result;
    for (const QChar c : key) {
        const char16_t code = c.unicode();
        if (code == u'/')
            result += '\\';
        else if (isPlainInKey(code))
            result += static_cast<char>(code);
        else if (code <= 0xFF)
            result += '%' + QByteArray::number(code, 16).rightJustified(2, '0').toUpper();
        else
            result += "%U" + QByteArray::number(code, 16).rightJustified(4, '0').toUpper();
    }
    return result;
}

// Reads one value; `list` is set when a comma outside quotation marks makes it a list.
class ValueReader
{
public:
    explicit ValueReader(QByteArrayView text)
        : m_text(text)
    {}

    /// None when the value is damaged.
    std::optional<QString> read(bool& list)
    {
        while (m_position < m_text.size()) {
            const char c = m_text[m_position];
            if (c == '"') {
                m_quoted = !m_quoted;
                ++m_position;
            } else if (c == '\\') {
                if (!readEscape())
                    return std::nullopt;
            } else if (!m_quoted && c == ';') {
                break;
            } else if (!m_quoted && c == ',') {
                list = true;
                ++m_position;
            } else {
                readRun();
            }
        }
        if (m_quoted)
            return std::nullopt;
        return m_result;
    }

private:
    void readRun()
    {
        const qsizetype start = m_position;
        while (m_position < m_text.size()) {
            const char c = m_text[m_position];
            if (c == '"' || c == '\\' || (!m_quoted && (c == ';' || c == ',')))
                break;
            ++m_position;
        }
        m_result += QString::fromUtf8(m_text.sliced(start, m_position - start));
    }

    bool readEscape()
    {
        if (m_position + 1 >= m_text.size())
            return false;
        const char c = m_text[m_position + 1];
        m_position += 2;
        if (c == 'x')
            return readHexadecimal();
        const auto* found = std::find_if(
            escapes.begin(), escapes.end(), [c](const auto& escape) { return escape.first == c; });
        if (found == escapes.end())
            return false;
        m_result += QLatin1Char(found->second);
        return true;
    }

    bool readHexadecimal()
    {
        const qsizetype start = m_position;
        while (m_position < m_text.size() && isHexDigit(static_cast<unsigned char>(m_text[m_position])))
            ++m_position;
        bool ok = false;
        const ushort code = m_text.sliced(start, m_position - start).toByteArray().toUShort(&ok, 16);
        m_result += QChar(code);
        return ok;
    }

    QByteArrayView m_text;
    qsizetype m_position = 0;
    bool m_quoted = false;
    QString m_result;
};

std::optional<IniValue> parseValue(QByteArrayView text)
{
    bool list = false;
    const std::optional<QString> value = ValueReader(text).read(list);
    if (!value)
        return std::nullopt;
    if (list)
        return ForeignIniValue{text.toByteArray()};
    if (!value->startsWith(u'@'))
        return *value;
    if (value->startsWith(QStringLiteral("@@")))
        return value->mid(1);
    if (value->startsWith(bytesPrefix) && value->endsWith(u')'))
        return QStringView(*value).sliced(bytesPrefix.size()).chopped(1).toLatin1();
    if (value->startsWith(textPrefix) && value->endsWith(u')'))
        return value->sliced(textPrefix.size()).chopped(1);
    return ForeignIniValue{text.toByteArray()};
}

std::optional<char> escapeLetter(char16_t code)
{
    // NUL is left to the hexadecimal form, which cannot run into a digit that follows.
    if ((code >= 0x20 && code != u'"' && code != u'\\') || code == 0)
        return std::nullopt;
    const auto* found = std::find_if(escapes.begin(), escapes.end(), [code](const auto& escape) {
        return QLatin1Char(escape.second) == QChar(code);
    });
    return found == escapes.end() ? std::nullopt : std::optional(found->first);
}

// Text keeps its letters; bytes are written in ASCII, since they are no UTF-8.
QByteArray escapedValue(QStringView value, bool asciiOnly)
{
    QByteArray result;
    result.reserve(value.size() + 16);
    bool afterHexadecimal = false;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char16_t code = value[i].unicode();
        const bool pair = value[i].isHighSurrogate() && i + 1 < value.size() && value[i + 1].isLowSurrogate();
        const bool unprintable = code < 0x20 || code == 0x7F || (value[i].isSurrogate() && !pair);
        const bool wouldProlong = afterHexadecimal && isHexDigit(code);
        afterHexadecimal = false;
        if (const auto letter = escapeLetter(code)) {
            result += '\\';
            result += *letter;
        } else if (unprintable || wouldProlong || (asciiOnly && code >= 0x80)) {
            result += "\\x" + QByteArray::number(code, 16);
            afterHexadecimal = true;
        } else if (code < 0x80) {
            result += static_cast<char>(code);
        } else {
            result += value.sliced(i, pair ? 2 : 1).toUtf8();
            i += pair ? 1 : 0;
        }
    }
    return result;
}

QByteArray quotedWhereNeeded(const QByteArray& text)
{
    const bool plain = std::all_of(text.begin(), text.end(), [](char c) {
        return isPlainInKey(static_cast<unsigned char>(c)) || c == '@' || c == '+' || c == ':' || c == '/';
    });
    return plain ? text : '"' + text + '"';
}

QByteArray formatValue(const IniValue& value)
{
    if (const auto* text = std::get_if<QString>(&value)) {
        const QString marked = text->startsWith(u'@') ? u'@' + *text : *text;
        return quotedWhereNeeded(escapedValue(marked, false));
    }
    if (const auto* bytes = std::get_if<QByteArray>(&value))
        return quotedWhereNeeded(escapedValue(bytesPrefix + QString::fromLatin1(*bytes) + u')', true));
    return std::get<ForeignIniValue>(value).text;
}

// "[General]" holds the keys without a section; a section of that very name is written "[%General]".
std::optional<QString> parseSection(QByteArrayView line)
{
    if (!line.endsWith(']'))
        return std::nullopt;
    const QByteArrayView name = line.sliced(1).chopped(1).trimmed();
    if (name.compare("general", Qt::CaseInsensitive) == 0)
        return QString();
    if (name.compare("%general", Qt::CaseInsensitive) == 0)
        return generalSection + u'/';
    const std::optional<QString> section = unescapedKey(name);
    return section ? std::optional(*section + u'/') : std::nullopt;
}

// Returns false when the line is damaged.
bool parseLine(QByteArrayView line, QString& section, IniValues& values)
{
    if (line.isEmpty() || line.startsWith(';'))
        return true;
    if (line.startsWith('[')) {
        const std::optional<QString> found = parseSection(line);
        section = found.value_or(QString());
        return found.has_value();
    }
    const qsizetype equals = line.indexOf('=');
    if (equals <= 0)
        return false;
    const std::optional<QString> key = unescapedKey(line.first(equals).trimmed());
    std::optional<IniValue> value = parseValue(line.sliced(equals + 1).trimmed());
    if (!key || !value)
        return false;
    values.insert_or_assign(section + *key, std::move(*value));
    return true;
}

} // namespace

std::optional<IniValues> parseIni(const QByteArray& text)
{
    if (text.contains('\0') || !text.isValidUtf8())
        return std::nullopt;
    if (text.startsWith(firstLine) && !text.endsWith(lastLine))
        return std::nullopt;
    IniValues values;
    QString section;
    qsizetype position = text.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
    while (position < text.size()) {
        const qsizetype found = text.indexOf('\n', position);
        const qsizetype end = found < 0 ? text.size() : found;
        const QByteArrayView line = QByteArrayView(text).sliced(position, end - position).trimmed();
        if (!parseLine(line, section, values))
            return std::nullopt;
        position = end + 1;
    }
    return values;
}

QByteArray formatIni(const IniValues& values)
{
    std::map<QString, QByteArray> sections;
    for (const auto& [key, value] : values) {
        const qsizetype solidus = key.indexOf(u'/');
        const QString section = solidus < 0 ? QString() : key.first(solidus);
        sections[section] +=
            escapedKey(QStringView(key).sliced(solidus + 1)) + '=' + formatValue(value) + '\n';
    }
    QByteArray text = firstLine.toByteArray();
    for (const auto& [section, lines] : sections) {
        QByteArray name = section.isEmpty() ? QByteArray("General") : escapedKey(section);
        if (!section.isEmpty() && section.compare(generalSection, Qt::CaseInsensitive) == 0)
            name = "%General";
        text += '[' + name + "]\n" + lines + '\n';
    }
    return text + lastLine.toByteArray();
}

} // namespace quillo
