// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/HostileTexts.h"

#include <cstdint>

namespace quillo {
namespace {

QString repeated(const QString& pattern, qsizetype size)
{
    return pattern.repeated(size / pattern.size() + 1).left(size);
}

QString letters(qsizetype size)
{
    return QString(size, QLatin1Char('a'));
}

QString digits(qsizetype size)
{
    return repeated(QStringLiteral("0123456789"), size);
}

QString spacesAfterADigit(qsizetype size)
{
    return QStringLiteral("1") + QString(size - 1, QLatin1Char(' '));
}

QString thousands(qsizetype size)
{
    return QStringLiteral("1") + repeated(QStringLiteral(",000"), size - 1);
}

QString dottedHosts(qsizetype size)
{
    return QStringLiteral("@") + repeated(QStringLiteral("a."), size - 2) + QStringLiteral("@");
}

QString base64(qsizetype size)
{
    const QString alphabet =
        QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
    QString text(size, Qt::Uninitialized);
    std::uint64_t state = 1;
    for (QChar& unit : text) {
        // Knuth's multiplier for a linear congruential generator; the top bits are good enough here.
        state = state * 6364136223846793005U + 1442695040888963407U;
        unit = alphabet[static_cast<qsizetype>(state >> 58)];
    }
    return text;
}

QString monthNames(qsizetype size)
{
    return repeated(QStringLiteral("January February March April May June July August September "), size);
}

QString lettersAfterADigit(qsizetype size)
{
    return QStringLiteral("1 ") + repeated(QStringLiteral("aaaa "), size - 2);
}

QString localParts(qsizetype size)
{
    return repeated(QStringLiteral("a.a.a.@"), size);
}

QString spacedDigits(qsizetype size)
{
    return repeated(QStringLiteral("1 "), size);
}

QString labelsWithoutCode(qsizetype size)
{
    return repeated(QStringLiteral("Invoice          #:          ;"), size);
}

constexpr HostileShape shapes[] = {
    {"letters", letters, false},
    {"digits", digits, true},
    {"spaces after a digit", spacesAfterADigit, false},
    {"1,000,000,...", thousands, false},
    {"a.a.a.@", localParts, false},
    {"@a.a.a. ... @", dottedHosts, false},
    {"base64", base64, false},
    {"month names", monthNames, false},
    {"1 aaaa aaaa ...", lettersAfterADigit, false},
    {"1 1 1 1 ...", spacedDigits, false},
    {"labels without a code", labelsWithoutCode, false},
};

} // namespace

std::span<const HostileShape> hostileShapes()
{
    return shapes;
}

} // namespace quillo
