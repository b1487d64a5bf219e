// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <algorithm>

namespace pdf {

/// A text that takes one byte for each character where its characters allow it, and two otherwise. Copies
/// share their memory.
class CompactText
{
public:
    CompactText() = default;
    explicit CompactText(const QString& text)
    {
        const auto isLatin1 = [](QChar unit) { return unit.unicode() < 0x100; };
        if (std::all_of(text.begin(), text.end(), isLatin1))
            m_latin1 = text.toLatin1();
        else
            m_utf16 = QString(text.constData(), text.size());
    }

    /// In UTF-16 code units.
    qsizetype size() const { return m_latin1.size() + m_utf16.size(); }
    qsizetype bytes() const { return m_latin1.size() + 2 * m_utf16.size(); }

    /// A part of the text, which must lie within it.
    QString mid(qsizetype start, qsizetype length) const
    {
        return m_utf16.isEmpty() ? QString::fromLatin1(m_latin1.constData() + start, length)
                                 : m_utf16.mid(start, length);
    }

    /// Calls `visit` with the text as a QLatin1StringView or a QStringView.
    template <typename Visitor>
    void visit(Visitor&& visit) const
    {
        if (m_utf16.isEmpty())
            visit(QLatin1StringView(m_latin1.constData(), m_latin1.size()));
        else
            visit(QStringView(m_utf16));
    }

private:
    QByteArray m_latin1;
    QString m_utf16;
};

} // namespace pdf
