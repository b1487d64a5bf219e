// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

#include <utility>
#include <variant>

namespace pdf {

/// Why an operation of the engine failed.
struct PDFError
{
    enum class Code {
        /// The file cannot be read at all: missing, no permission, a folder.
        unreadable,
        /// The file can be read and is no PDF, or one that is damaged beyond repair.
        notPDF,
        /// The document is locked, or the password is wrong.
        passwordRequired,
        /// The file cannot be written: no permission, no space, a folder in its place.
        unwritable,
        /// Another program has changed the file since it was opened.
        changedMeanwhile,
        /// The document asks for more memory or time than the engine grants.
        limitExceeded,
        /// The caller gave up.
        cancelled,
        /// The file is sound enough to open, this part of it is not.
        damaged,
        /// The document's own rules do not allow it.
        refused,
    };

    Code code = Code::damaged;
    /// One sentence without a full stop, in English, for consoles and logs; names no file.
    QString message;
};

/// The error of a write that would overwrite somebody else's changes.
inline PDFError changedMeanwhile()
{
    return {
        PDFError::Code::changedMeanwhile,
        QStringLiteral("another program has changed the file since it was opened")};
}

/// A value or the reason why there is none. Reading the one that is not there is a programming error.
template <typename Value>
class [[nodiscard]] Result
{
public:
    Result(Value value)
        : m_content(std::move(value))
    {}
    Result(PDFError error)
        : m_content(std::move(error))
    {}

    explicit operator bool() const { return std::holds_alternative<Value>(m_content); }

    Value& operator*() & { return std::get<Value>(m_content); }
    const Value& operator*() const& { return std::get<Value>(m_content); }
    Value&& operator*() && { return std::get<Value>(std::move(m_content)); }
    Value* operator->() { return &std::get<Value>(m_content); }
    const Value* operator->() const { return &std::get<Value>(m_content); }

    const PDFError& error() const { return std::get<PDFError>(m_content); }

private:
    std::variant<Value, PDFError> m_content;
};

} // namespace pdf
