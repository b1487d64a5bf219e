// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>
#include <variant>

namespace quillo {

/// A value that somebody else put into the file and that is neither plain text nor bytes (a list, a
/// rectangle); kept to the letter so that writing the file does not lose it.
struct ForeignIniValue
{
    QByteArray text;
    bool operator==(const ForeignIniValue&) const = default;
};

/// An INI file has no types of its own: Booleans and numbers are text.
using IniValue = std::variant<QString, QByteArray, ForeignIniValue>;

/// By key; a key with a solidus lies in the section that is named before it.
using IniValues = std::map<QString, IniValue>;

/// Reads the INI format of QSettings: UTF-8, `[sections]`, `key=value`, comments after a semicolon. None when
/// the text is damaged: a line that is none of these, an open quotation, a broken escape, bytes that are not
/// text, or a file of formatIni() that lacks its end.
std::optional<IniValues> parseIni(const QByteArray& text);

/// Writes what QSettings reads. A comment in the first line and one in the last allow parseIni() to tell
/// when a part is missing.
QByteArray formatIni(const IniValues& values);

} // namespace quillo
