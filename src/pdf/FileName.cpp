// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FileName.h"

#include <QDir>
#include <QStringConverter>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace pdf {
namespace {

// What is added to a byte of 0x80 to 0xFF.
constexpr char16_t escapeBase = 0xDC00;

bool isEscapedByte(QChar unit)
{
    return unit.unicode() >= escapeBase + 0x80 && unit.unicode() <= escapeBase + 0xFF;
}

/// The length of the UTF-8 character that the bytes begin with; 0 where there is none.
qsizetype characterLength(QByteArrayView bytes)
{
    constexpr qsizetype longestCharacter = 4;
    for (qsizetype length = 1; length <= std::min(bytes.size(), longestCharacter); ++length) {
        if (bytes.first(length).isValidUtf8())
            return length;
    }
    return 0;
}

/// A mark of the byte order at the start is a part of the name.
QString fromValidUtf8(QByteArrayView bytes)
{
    return QStringDecoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom).decode(bytes);
}

/// Hands the pieces of a name to the functions in their order: text without escaped bytes, and such bytes.
template <typename UseText, typename UseByte>
void forEachPiece(QStringView name, UseText&& useText, UseByte&& useByte)
{
    qsizetype start = 0;
    for (qsizetype i = 0; i < name.size(); ++i) {
        const bool isPair = name[i].isHighSurrogate() && i + 1 < name.size() && name[i + 1].isLowSurrogate();
        if (isPair) {
            ++i;
        } else if (isEscapedByte(name[i])) {
            useText(name.sliced(start, i - start));
            useByte(static_cast<unsigned char>(name[i].unicode() - escapeBase));
            start = i + 1;
        }
    }
    useText(name.sliced(start));
}

QByteArray currentFolder()
{
    struct Free
    {
        void operator()(char* memory) const { std::free(memory); }
    };
    const std::unique_ptr<char, Free> folder(::getcwd(nullptr, 0));
    return {folder.get()};
}

} // namespace

QString fileNameFromBytes(QByteArrayView bytes)
{
    if (bytes.isValidUtf8())
        return fromValidUtf8(bytes);
    QString name;
    while (!bytes.isEmpty()) {
        const qsizetype length = characterLength(bytes);
        if (length > 0)
            name += fromValidUtf8(bytes.first(length));
        else
            name += QChar(char16_t(escapeBase + static_cast<unsigned char>(bytes.front())));
        bytes = bytes.sliced(std::max<qsizetype>(length, 1));
    }
    return name;
}

QByteArray bytesOfFileName(const QString& name)
{
    QByteArray bytes;
    forEachPiece(
        name, [&](QStringView text) { bytes += text.toUtf8(); },
        [&](unsigned char byte) { bytes += static_cast<char>(byte); });
    return bytes;
}

QString printableFileName(const QString& name)
{
    QString result;
    forEachPiece(
        name, [&](QStringView text) { result += text; },
        [&](unsigned char byte) { result += QLatin1String("\\x") + QString::number(byte, 16).toUpper(); });
    return result;
}

QString printableFileName(const QUrl& url)
{
    if (!url.isLocalFile())
        return url.fileName();
    return printableFileName(filePath(url).section(QLatin1Char('/'), -1));
}

QString absoluteFilePath(const QString& path)
{
    const bool isAbsolute = path.startsWith(QLatin1Char('/'));
    return QDir::cleanPath(isAbsolute ? path : fileNameFromBytes(currentFolder()) + QLatin1Char('/') + path);
}

QUrl fileURL(const QString& path)
{
    const QByteArray bytes = bytesOfFileName(path);
    if (bytes.isValidUtf8())
        return QUrl::fromLocalFile(path);
    return QUrl::fromEncoded("file://" + bytesOfFileName(absoluteFilePath(path)).toPercentEncoding("/"));
}

QString filePath(const QUrl& url)
{
    if (!url.isLocalFile())
        return {};
    const QByteArray bytes = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    return bytes.isValidUtf8() ? url.toLocalFile() : fileNameFromBytes(bytes);
}

} // namespace pdf
