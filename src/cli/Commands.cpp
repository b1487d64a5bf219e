// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Commands.h"

#include "cli/InputReader.h"
#include "cli/JsonPrinter.h"
#include "cli/MemoryLimit.h"
#include "cli/PasswordFile.h"
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

/// The reason why there is no result, or none.
std::optional<QString> runOnInput(
    const Input& input, const Options& options, const std::optional<QString>& password, Printer& printer)
{
    try {
        const auto reading = readInput(input, password);
        if (!reading)
            return reading.error().message;
        if (options.inputs.size() > 1)
            printer.beginFile(input.path);
        printResult(options.command, *reading, printer);
        return std::nullopt;
    } catch (const std::bad_alloc&) {
        return QCoreApplication::translate("quillo::cli", "it needs more memory than one file may use");
    }
}

} // namespace

ExitStatus runCommand(const Options& options, Output& output, Output& errors)
{
    const auto printer = makePrinter(options, output);
    if (options.inputs.empty()) {
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
        const auto reason = runOnInput(input, options, password, *printer);
        // What was printed comes before what is complained about next.
        output.flush();
        if (reason) {
            report(errors, input.path, *reason);
            status = ExitStatus::unreadableInput;
        }
    }
    return status;
}

} // namespace quillo::cli
