// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace samples {

/// Collects the objects of one PDF file and writes them out. Nothing but what is put in decides the bytes:
/// no clock, no random identifier, no pointer value.
class PdfFile
{
public:
    /// An object's number; 0 is no object.
    using Ref = int;

    enum class Compression {
        /// As it is; what is text stays readable in the file.
        none,
        /// zlib at its highest level.
        deflate,
    };

    /// A number for an object that is set later.
    Ref reserve();
    void set(Ref ref, std::string object);
    Ref add(std::string object);

    /// `entries` are the dictionary's own, without the length and the filter.
    void setStream(Ref ref, std::string_view entries, std::string_view data, Compression compression);
    Ref addStream(std::string_view entries, std::string_view data, Compression compression);

    /// The whole file.
    std::string finish(Ref catalog, Ref information) const;

private:
    std::vector<std::string> m_objects;
};

/// "12 0 R"
std::string reference(PdfFile::Ref ref);
/// "[1 0 R 2 0 R]"
std::string references(const std::vector<PdfFile::Ref>& refs);

/// At most three decimals and no trailing zeros.
std::string number(double value);
/// "[x1 y1 x2 y2]" or any other list of numbers.
std::string numbers(const std::vector<double>& values);

/// A literal string of these bytes, in parentheses.
std::string literal(std::string_view bytes);
/// A text string object: ASCII as it is, everything else in UTF-16 with a byte order mark.
std::string textString(std::string_view utf8);

/// The code points of well-formed UTF-8.
std::u32string codePoints(std::string_view utf8);
/// Big-endian UTF-16 in hexadecimal digits.
std::string utf16Hex(std::u32string_view text);

} // namespace samples
