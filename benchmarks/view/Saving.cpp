// SPDX-License-Identifier: AGPL-3.0-or-later
#include "view/Saving.h"

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/Race.h"

#include <QCoreApplication>
#include <QTextStream>

namespace quillo::benchmark {

bool saveTurned(const QString& source, const QString& target)
{
    const auto document = pdf::PDFDocument::open(source);
    return document && (*document)->page(0)->setRotation(90) && (*document)->write(target);
}

bool measureSaving(const Subject& subject, int rounds)
{
    const auto document = pdf::PDFDocument::open(subject.path);
    if (!document || !(*document)->page(0)->setRotation(90))
        return false;
    const QString target = subject.path + QStringLiteral(".saved");
    const auto program = [&](const char* name, const QStringList& arguments) {
        return [=] { return runProgram(QString::fromLatin1(name), arguments); };
    };
    std::vector<Contestant> contestants = {
        {QStringLiteral("mutool clean"), program("mutool", {QStringLiteral("clean"), subject.path, target})},
        {QStringLiteral("qpdf"), program("qpdf", {subject.path, target})},
        {QStringLiteral("Quillo, a program of its own"),
         [&] {
             return runProgram(
                 QCoreApplication::applicationFilePath(), {QStringLiteral("--save"), subject.path, target});
         }},
        {QStringLiteral("Quillo, within a program"),
         [&] { return static_cast<bool>((*document)->write(target)); }},
    };
    if (!race(contestants, rounds))
        return false;
    QTextStream(stdout) << subject.name << ":\n";
    printRace(contestants);
    return true;
}

} // namespace quillo::benchmark
