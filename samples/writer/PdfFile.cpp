// SPDX-License-Identifier: AGPL-3.0-or-later
#include "writer/PdfFile.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

namespace samples {
namespace {

std::string deflated(std::string_view data)
{
    uLongf size = compressBound(static_cast<uLong>(data.size()));
    std::string result(size, '\0');
    const auto* source = reinterpret_cast<const Bytef*>(data.data());
    auto* target = reinterpret_cast<Bytef*>(result.data());
    if (compress2(target, &size, source, static_cast<uLong>(data.size()), Z_BEST_COMPRESSION) != Z_OK)
        throw std::runtime_error("zlib ran out of memory");
    result.resize(size);
    return result;
}

/// The last `count` digits of the value.
std::string inBase(std::uint64_t value, unsigned base, std::size_t count)
{
    std::string digits(count, '0');
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
        *digit = "0123456789ABCDEF"[value % base];
        value /= base;
    }
    return digits;
}

/// A fingerprint of the content (FNV-1a, 64 bits) in hexadecimal: the same file always has the same one.
std::string fingerprint(std::string_view bytes)
{
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    return inBase(hash, 16, 16);
}

} // namespace

PdfFile::Ref PdfFile::reserve()
{
    m_objects.emplace_back();
    return static_cast<Ref>(m_objects.size());
}

void PdfFile::set(Ref ref, std::string object)
{
    m_objects.at(static_cast<std::size_t>(ref) - 1) = std::move(object);
}

PdfFile::Ref PdfFile::add(std::string object)
{
    m_objects.push_back(std::move(object));
    return static_cast<Ref>(m_objects.size());
}

void PdfFile::setStream(Ref ref, std::string_view entries, std::string_view data, Compression compression)
{
    const bool compress = compression == Compression::deflate;
    const std::string packed = compress ? deflated(data) : std::string(data);
    std::string object = "<<";
    object += entries;
    if (compress)
        object += "/Filter/FlateDecode";
    object += "/Length " + std::to_string(packed.size()) + ">>\nstream\n" + packed + "\nendstream";
    set(ref, std::move(object));
}

PdfFile::Ref PdfFile::addStream(std::string_view entries, std::string_view data, Compression compression)
{
    const Ref ref = reserve();
    setStream(ref, entries, data, compression);
    return ref;
}

std::string PdfFile::finish(Ref catalog, Ref information) const
{
    // The comment's bytes above 127 tell transfer programs that the file is binary.
    std::string file = "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n";
    std::vector<std::size_t> offsets;
    for (std::size_t i = 0; i < m_objects.size(); ++i) {
        offsets.push_back(file.size());
        file += std::to_string(i + 1) + " 0 obj\n" + m_objects[i] + "\nendobj\n";
    }

    const std::string identifier = fingerprint(file) + fingerprint(std::to_string(file.size()));
    const std::size_t start = file.size();
    const std::string size = std::to_string(m_objects.size() + 1);
    file += "xref\n0 " + size + "\n0000000000 65535 f \n";
    for (const std::size_t offset : offsets) {
        const std::string digits = std::to_string(offset);
        file += std::string(10 - digits.size(), '0') + digits + " 00000 n \n";
    }
    file += "trailer\n<</Size " + size + "/Root " + reference(catalog);
    if (information != 0)
        file += "/Info " + reference(information);
    file +=
        "/ID[<" + identifier + "><" + identifier + ">]>>\nstartxref\n" + std::to_string(start) + "\n%%EOF\n";
    return file;
}

std::string reference(PdfFile::Ref ref)
{
    return std::to_string(ref) + " 0 R";
}

std::string references(const std::vector<PdfFile::Ref>& refs)
{
    std::string result = "[";
    for (const PdfFile::Ref ref : refs) {
        if (result.size() > 1)
            result += ' ';
        result += reference(ref);
    }
    return result + "]";
}

std::string number(double value)
{
    const long long thousandths = std::llround(value * 1000);
    const std::string sign = thousandths < 0 ? "-" : "";
    const long long magnitude = std::llabs(thousandths);
    std::string result = sign + std::to_string(magnitude / 1000);
    if (magnitude % 1000 == 0)
        return result;
    const std::string fraction = std::to_string(1000 + magnitude % 1000).substr(1);
    return result + "." + fraction.substr(0, fraction.find_last_not_of('0') + 1);
}

std::string numbers(const std::vector<double>& values)
{
    std::string result = "[";
    for (const double value : values) {
        if (result.size() > 1)
            result += ' ';
        result += number(value);
    }
    return result + "]";
}

std::string literal(std::string_view bytes)
{
    std::string result = "(";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (byte == '(' || byte == ')' || byte == '\\') {
            result += '\\';
            result += byte;
        } else if (value < 32 || value > 126) {
            result += '\\' + inBase(value, 8, 3);
        } else {
            result += byte;
        }
    }
    return result + ")";
}

std::string textString(std::string_view utf8)
{
    const bool ascii = std::all_of(
        utf8.begin(), utf8.end(), [](char byte) { return static_cast<unsigned char>(byte) < 128; });
    return ascii ? literal(utf8) : "<FEFF" + utf16Hex(codePoints(utf8)) + ">";
}

std::u32string codePoints(std::string_view utf8)
{
    std::u32string result;
    for (const char byte : utf8) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80)
            result += static_cast<char32_t>(value);
        else if (value >= 0xf0)
            result += static_cast<char32_t>(value & 0x07);
        else if (value >= 0xe0)
            result += static_cast<char32_t>(value & 0x0f);
        else if (value >= 0xc0)
            result += static_cast<char32_t>(value & 0x1f);
        else
            result.back() = (result.back() << 6) | (value & 0x3f);
    }
    return result;
}

std::string utf16Hex(std::u32string_view text)
{
    std::string result;
    const auto append = [&](std::uint32_t unit) { result += inBase(unit, 16, 4); };
    for (const char32_t point : text) {
        if (point < 0x10000) {
            append(point);
        } else {
            append(0xd800 + ((point - 0x10000) >> 10));
            append(0xdc00 + ((point - 0x10000) & 0x3ff));
        }
    }
    return result;
}

} // namespace samples
