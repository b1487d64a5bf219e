// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QRectF>

#include <initializer_list>

namespace pdf {

/// Puts a content stream together, operator by operator.
class ContentStream
{
public:
    /// The operator after its operands.
    void add(std::initializer_list<double> operands, const char* operation);
    /// The string as an operand, then the operator.
    void add(const QByteArray& string, const char* operation);
    /// Operators as they are.
    void addRaw(const QByteArray& operators);
    void addRectangle(const QRectF& rect, const char* paint);

    const QByteArray& bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

/// The name as a content stream has it, with its slash.
QByteArray contentName(const QByteArray& name);

/// The number as a content stream has it: without an exponent, and never more than four digits after the
/// point.
QByteArray contentNumber(double number);

} // namespace pdf
