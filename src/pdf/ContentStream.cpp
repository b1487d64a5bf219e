// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/ContentStream.h"

#include <cmath>
#include <cstring>

namespace pdf {
namespace {

QByteArray literalString(const QByteArray& bytes)
{
    QByteArray literal = "(";
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '(' || c == ')' || c == '\\')
            literal += '\\';
        if (code >= 32 && code < 127)
            literal += c;
        else
            literal += '\\' + QByteArray::number(code, 8).rightJustified(3, '0');
    }
    return literal + ')';
}

} // namespace

QByteArray contentName(const QByteArray& name)
{
    QByteArray result = "/";
    for (const char c : name) {
        const bool isRegular = c > 32 && c < 127 && !std::strchr("()<>[]{}/%#", c);
        if (isRegular)
            result += c;
        else
            result += '#' + QByteArray(1, c).toHex();
    }
    return result;
}

QByteArray contentNumber(double number)
{
    if (!std::isfinite(number))
        return "0";
    QByteArray text = QByteArray::number(number, 'f', 4);
    while (text.endsWith('0'))
        text.chop(1);
    if (text.endsWith('.'))
        text.chop(1);
    return text == "-0" ? QByteArray("0") : text;
}

void ContentStream::add(std::initializer_list<double> operands, const char* operation)
{
    for (const double operand : operands)
        m_bytes += contentNumber(operand) + ' ';
    m_bytes += operation;
    m_bytes += '\n';
}

void ContentStream::add(const QByteArray& string, const char* operation)
{
    m_bytes += literalString(string) + ' ' + operation + '\n';
}

void ContentStream::addRaw(const QByteArray& operators)
{
    m_bytes += operators + '\n';
}

void ContentStream::addRectangle(const QRectF& rect, const char* paint)
{
    add({rect.x(), rect.y(), rect.width(), rect.height()}, "re");
    add({}, paint);
}

} // namespace pdf
