// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Commands.h"

#include "cli/InputReader.h"
#include "cli/Interruption.h"
#include "cli/JsonPrinter.h"
#include "cli/MemoryLimit.h"
#include "cli/PageNumbers.h"
#include "cli/PasswordFile.h"
#include "cli/Progress.h"
#include "cli/ReportPrinter.h"
#include "cli/SafeText.h"
#include "understanding/ActionDetection.h"
#include "understanding/DocumentClassification.h"
#include "understanding/TextExplanation.h"

#include <QCoreApplication>

#include <memory>
#include <new>

namespace quillo::cli {
namespace {

const QString standardInput = QStringLiteral("-");

std::unique_ptr<Printer> makePrinter(const Options& options, Output& output)
{
    if (options.json)
        return std::make_unique<JsonPrinter>(output);
    return std::make_unique<ReportPrinter>(output, Terminal::ofStandardOutput());
}

DocumentInsight classified(const PageTexts& pages)
{
    return classifyText(PDFTextExtractor::getAllText(pages));
}

void printResult(Command command, const PDFTextExtractor::Reading& reading, Printer& printer)
{
    const PageTexts& pages = reading.pageTexts;
    switch (command) {
    case Command::text:
        printer.printText(reading);
        break;
    case Command::classify:
        printer.printClassification(classified(pages));
        break;
    case Command::extract:
        printer.printItems(pages);
        break;
    case Command::actions:
        printer.printActions(detectActions(pages, DateSettings::system()));
        break;
    case Command::explain:
        printer.printExplanation(explainText(PDFTextExtractor::getAllText(pages)));
        break;
    case Command::analyze: {
        DocumentInsight insight = classified(pages);
        insight.actionRequired = detectActions(pages, DateSettings::system());
        printer.printAnalysis(insight, pages);
        break;
    }
    }
}

void report(Output& errors, const QString& name, const QString& reason)
{
    errors.write(QStringLiteral("quillo-cli: %1: %2\n").arg(safeName(name), safeLine(reason)));
    errors.flush();
}

/// What became of an input.
struct Outcome
{
    ExitStatus status = ExitStatus::success;
    /// Unless it is a success.
    QString complaint;
};

Outcome outcomeOf(const PDFTextExtractor::Reading& reading)
{
    const auto& pages = reading.abandonedPages;
    if (pages.empty())
        return {};
    const QString text =
        pages.size() == 1 ? QCoreApplication::translate(
                                "quillo::cli", "given up on page %1, which asks for too much time or memory")
                          : QCoreApplication::translate(
                                "quillo::cli", "given up on pages %1, which ask for too much time or memory");
    return {ExitStatus::incompleteInput, text.arg(pageNumbers(pages))};
}

Outcome runOnInput(
    const Input& input, const Options& options, const std::optional<QString>& password, Printer& printer,
    Progress& progress)
{
    const ReadingOptions reading{
        .onPageCount = [&](std::int64_t pageCount) { progress.begin(pageCount); },
        .onPageRead = [&] { progress.notePage(); },
        .withBoxes = options.command == Command::text && options.json,
    };
    try {
        const auto result = readInput(input, password, reading);
        progress.end();
        if (!result)
            return {ExitStatus::unreadableInput, result.error().message};
        if (options.inputs.size() > 1)
            printer.beginFile(input.path);
        printResult(options.command, *result, printer);
        return outcomeOf(*result);
    } catch (const std::bad_alloc&) {
        progress.end();
        return {
            ExitStatus::unreadableInput,
            QCoreApplication::translate("quillo::cli", "it needs more memory than one file may use")};
    }
}

/// That of several inputs; one that was not read at all weighs more than one that was read in part.
ExitStatus worse(ExitStatus a, ExitStatus b)
{
    if (a == ExitStatus::unreadableInput || b == ExitStatus::success)
        return a;
    return b;
}

} // namespace

ExitStatus runCommand(const Options& options, Output& output, Output& errors)
{
    const auto printer = makePrinter(options, output);
    Progress progress;
    Interruption interruption(progress, options.timeLimit);
    if (options.inputs.empty()) {
        interruption.nameInput(standardInput);
        const auto passage =
            options.passage ? pdf::Result<QString>(*options.passage) : readPlainText(standardInput);
        if (!passage) {
            report(errors, standardInput, passage.error().message);
            return ExitStatus::unreadableInput;
        }
        printer->printExplanation(explainText(*passage));
        output.flush();
        return ExitStatus::success;
    }

    std::optional<QString> password = options.password;
    if (options.passwordFile) {
        interruption.nameInput(*options.passwordFile);
        const auto read = readPasswordFile(*options.passwordFile);
        if (!read) {
            report(errors, *options.passwordFile, read.error().message);
            return ExitStatus::unreadableInput;
        }
        password = *read;
    }

    ExitStatus status = ExitStatus::success;
    for (const Input& input : options.inputs) {
        nameInputForMemoryLimit(input.path);
        interruption.nameInput(input.path);
        const Outcome outcome = runOnInput(input, options, password, *printer, progress);
        // What was printed comes before what is complained about next.
        output.flush();
        if (outcome.status != ExitStatus::success)
            report(errors, input.path, outcome.complaint);
        status = worse(status, outcome.status);
    }
    return status;
}

} // namespace quillo::cli
