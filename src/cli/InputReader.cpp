// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/InputReader.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

namespace quillo::cli {
namespace {

// The text and what is made of it take several times this in memory.
constexpr qint64 maximumPlainBytes = qint64{128} << 20;

pdf::PDFError unreadable(const QString& message)
{
    return {pdf::PDFError::Code::unreadable, message};
}

pdf::Result<QString> readText(QFile& file)
{
    QByteArray bytes = file.read(maximumPlainBytes + 1);
    if (file.error() != QFileDevice::NoError)
        return unreadable(file.errorString());
    if (bytes.size() > maximumPlainBytes)
        return unreadable(QCoreApplication::translate("quillo::cli", "more than %1 MB of plain text")
                              .arg(maximumPlainBytes >> 20));
    // Whatever is not UTF-8 becomes U+FFFD here.
    return QString::fromUtf8(bytes);
}

pdf::Result<QString> readPlainFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return unreadable(file.errorString());
    return readText(file);
}

} // namespace

pdf::Result<QString> readStandardInput()
{
    QFile file;
    if (!file.open(stdin, QIODevice::ReadOnly))
        return unreadable(file.errorString());
    return readText(file);
}

PageTexts pagesOfPlainText(const QString& text)
{
    PageTexts pages;
    for (const QStringView page : QStringView(text).split(u'\f'))
        pages.emplace_back(static_cast<std::int64_t>(pages.size()), page.toString(), false, std::nullopt);
    return pages;
}

pdf::Result<PDFTextExtractor::Reading>
readInput(const Input& input, const std::optional<QString>& password, const ReadingOptions& options)
{
    if (!input.isPlain)
        return PDFTextExtractor::readDocument(input.path, password, {}, options);
    const auto text = input.isStandardInput() ? readStandardInput() : readPlainFile(input.path);
    if (!text)
        return text.error();
    PageTexts pages = pagesOfPlainText(*text);
    const auto count = static_cast<std::int64_t>(pages.size());
    return PDFTextExtractor::Reading{count, std::move(pages)};
}

} // namespace quillo::cli
