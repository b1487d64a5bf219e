// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/SafeText.h"

#include "pdf/FileName.h"

namespace quillo::cli {
namespace {

// Unicode's pictures of the controls 0 to 31, in their order, and of the one that deletes.
constexpr char16_t firstPicture = 0x2400;
constexpr char16_t deletePicture = 0x2421;

bool turnsDirection(char16_t unit)
{
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

bool isControl(char16_t unit)
{
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || turnsDirection(unit) || unit == 0x2028 ||
           unit == 0x2029;
}

QChar picture(char16_t control)
{
    if (control < 0x20)
        return QChar(char16_t(firstPicture + control));
    return control == 0x7F ? QChar(deletePicture) : QChar(QChar::ReplacementCharacter);
}

} // namespace

QString safeText(QStringView text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        if (unit == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
            continue;
        const bool stays = unit == u'\n' || unit == u'\t' || !isControl(unit);
        result += stays ? QChar(unit) : picture(unit);
    }
    return result;
}

QString safeLine(QStringView text)
{
    QString result(text.size(), Qt::Uninitialized);
    QChar* const begin = result.data();
    QChar* end = begin;
    for (const QChar character : text) {
        const bool isAfterSpace = end == begin || end[-1] == QLatin1Char(' ');
        // Most text is made of nothing else.
        const bool isPrintableAscii = character.unicode() > u' ' && character.unicode() < 0x7F;
        if (isPrintableAscii)
            *end++ = character;
        else if (!character.isSpace())
            *end++ = isControl(character.unicode()) ? picture(character.unicode()) : character;
        else if (!isAfterSpace)
            *end++ = QLatin1Char(' ');
    }
    if (end != begin && end[-1] == QLatin1Char(' '))
        --end;
    result.truncate(end - begin);
    return result;
}

QString safeName(const QString& name)
{
    QString result;
    for (const QChar character : pdf::printableFileName(name))
        result += isControl(character.unicode()) ? picture(character.unicode()) : character;
    return result;
}

} // namespace quillo::cli
