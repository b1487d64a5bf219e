// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/InputReader.h"

#include "cli/InputFile.h"
#include "cli/PasswordQuestion.h"
#include "cli/SpooledInput.h"

#include <QCoreApplication>
#include <QStringConverter>
#include <QStringTokenizer>

#include <utility>

namespace quillo::cli {
namespace {

// The text and what is made of it take several times this in memory.
constexpr qint64 maximumPlainBytes = qint64{128} << 20;

// Whatever a person would read; it is kept on disk and not in memory.
constexpr qint64 maximumSpooledBytes = qint64{2} << 30;

constexpr int maximumQuestions = 3;

/// Text in UTF-8, or in what its byte order mark says it is. Whatever is no character becomes U+FFFD.
QString decoded(QByteArrayView bytes)
{
    const auto marked = QStringConverter::encodingForData(bytes);
    return QStringDecoder(marked.value_or(QStringConverter::Utf8), QStringDecoder::Flag::Stateless)
        .decode(bytes);
}

/// Asks for a password where one is needed and none was given.
pdf::Result<PDFTextExtractor::Reading> readUnlocked(
    const QString& path, const QString& name, const std::optional<QString>& password,
    const ReadingOptions& options)
{
    auto reading = PDFTextExtractor::readDocument(path, password, {}, options);
    for (int i = 0; i < maximumQuestions && !password && !reading; ++i) {
        if (reading.error().code != pdf::PDFError::Code::passwordRequired)
            break;
        const auto answer = askForPassword(name, i > 0);
        if (!answer)
            break;
        reading = PDFTextExtractor::readDocument(path, answer, {}, options);
    }
    return reading;
}

} // namespace

pdf::Result<QString> readPlainText(const QString& path)
{
    auto file = InputFile::open(path);
    if (!file)
        return file.error();
    const auto bytes =
        file->readAll(maximumPlainBytes, QCoreApplication::translate("quillo::cli", "plain text"));
    if (!bytes)
        return bytes.error();
    return decoded(*bytes);
}

PageTexts pagesOfPlainText(const QString& text)
{
    PageTexts pages;
    pages.reserve(static_cast<std::size_t>(text.count(QLatin1Char('\f'))) + 1);
    for (const QStringView page : QStringTokenizer(text, u'\f'))
        pages.emplace_back(static_cast<std::int64_t>(pages.size()), page.toString(), false, std::nullopt);
    return pages;
}

pdf::Result<PDFTextExtractor::Reading>
readInput(const Input& input, const std::optional<QString>& password, const ReadingOptions& options)
{
    if (input.isPlain) {
        const auto text = readPlainText(input.path);
        if (!text)
            return text.error();
        PageTexts pages = pagesOfPlainText(*text);
        const auto count = static_cast<std::int64_t>(pages.size());
        return PDFTextExtractor::Reading{count, std::move(pages)};
    }
    if (!input.isStandardInput())
        return readUnlocked(input.path, input.path, password, options);
    auto standardInput = InputFile::open(input.path);
    if (!standardInput)
        return standardInput.error();
    const auto spooled = SpooledInput::read(*standardInput, maximumSpooledBytes);
    if (!spooled)
        return spooled.error();
    auto reading = readUnlocked(spooled->path(), input.path, password, options);
    // The program that writes into a pipe may fail half-way. A damaged file is repaired, and the beginning of
    // one would then pass for a whole.
    if (reading && !spooled->hasEndMark())
        return pdf::PDFError{
            pdf::PDFError::Code::unreadable,
            QCoreApplication::translate("quillo::cli", "it is cut short: the mark of its end is missing")};
    return reading;
}

} // namespace quillo::cli
