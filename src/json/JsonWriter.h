// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <nlohmann/json.hpp>

#include <QByteArray>
#include <QByteArrayView>
#include <QRectF>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <functional>
#include <utility>

namespace quillo {

using Json = nlohmann::ordered_json;

/// Writes compact JSON text piece by piece, so that a value never has to be held as a whole. Everything that
/// is written as JSON goes through here and has one form: UTF-8 with non-ASCII characters as they are;
/// numbers in the shortest form that reads back to the same value, whole ones without a fraction; rectangles
/// as
/// [[x, y], [width, height]]. Text that is no valid Unicode gets U+FFFD, a number that is not finite is null.
///
/// Commas come by themselves; that values and keys follow one another as JSON wants it is up to the caller.
class JsonWriter
{
public:
    /// Gets the text in pieces of some ten kilobytes. What it throws reaches the caller of the writer.
    using Sink = std::function<void(QByteArrayView)>;

    explicit JsonWriter(Sink sink)
        : m_sink(std::move(sink))
    {}

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }

    /// UTF-8.
    void key(QByteArrayView name);

    void text(QStringView value);
    void number(double value);
    void integer(std::int64_t value);
    void boolean(bool value);
    void null();
    void rect(const QRectF& value);
    void value(const Json& value);

    /// Hands on what has not been handed on yet; to be called at the end.
    void flush();
    /// Forgets what has not been handed on yet and begins a new text.
    void restart();

private:
    void open(char bracket);
    void close(char bracket);
    void beginValue();
    void endValue();
    void appendQuoted(QByteArrayView utf8);
    void appendEscaped(QByteArrayView utf8);

    const Sink m_sink;
    QByteArray m_text;
    bool m_needsComma = false;
};

/// A rectangle's form as a value: [[x, y], [width, height]].
Json toJson(const QRectF& rect);

} // namespace quillo
