// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/DefaultAppearance.h"

#include <QByteArrayList>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace pdf {
namespace {

// Larger ones are mistakes.
constexpr double largestSize = 1000.0;

/// Splits at white space and before the slash of a name.
QByteArrayList tokens(QByteArrayView string)
{
    QByteArrayList result;
    bool isOpen = false;
    for (const char c : string) {
        if (c == 0 || std::strchr(" \t\r\n\f", c)) {
            isOpen = false;
            continue;
        }
        if (!isOpen || c == '/')
            result.append(QByteArray());
        result.last().append(c);
        isOpen = true;
    }
    return result;
}

int colourComponents(const QByteArray& operation)
{
    if (operation == "g")
        return 1;
    if (operation == "rg")
        return 3;
    return operation == "k" ? 4 : 0;
}

/// A name without its slash and its escapes.
QByteArray nameOf(const QByteArray& token)
{
    QByteArray escaped = token.mid(1);
    escaped.replace('%', "%25").replace('#', '%');
    return QByteArray::fromPercentEncoding(escaped);
}

} // namespace

std::optional<QColor> colourOf(std::span<const double> components)
{
    const auto part = [&](std::size_t index) {
        const double value = components[index];
        return std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0.0;
    };
    switch (components.size()) {
    case 1:
        return QColor::fromRgbF(part(0), part(0), part(0));
    case 3:
        return QColor::fromRgbF(part(0), part(1), part(2));
    case 4:
        return QColor::fromCmykF(part(0), part(1), part(2), part(3)).toRgb();
    default:
        return std::nullopt;
    }
}

DefaultAppearance parseDefaultAppearance(QByteArrayView string)
{
    DefaultAppearance result;
    const QByteArrayList words = tokens(string);
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (words[i] == "Tf" && i >= 2 && words[i - 2].startsWith('/')) {
            result.font = nameOf(words[i - 2]);
            // A negative size turns the text upside down in theory; in forms it is a mistake.
            const double size = std::abs(words[i - 1].toDouble());
            result.size = size <= largestSize ? size : 0.0;
        }
        const qsizetype count = colourComponents(words[i]);
        if (count == 0 || i < count)
            continue;
        std::vector<double> components;
        QByteArray operation;
        for (qsizetype k = i - count; k < i; ++k) {
            components.push_back(words[k].toDouble());
            operation += QByteArray::number(std::clamp(components.back(), 0.0, 1.0)) + ' ';
        }
        if (const auto colour = colourOf(components)) {
            result.colour = *colour;
            result.colourOperator = operation + words[i];
        }
    }
    return result;
}

} // namespace pdf
