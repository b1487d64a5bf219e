// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"

#include <cstdio>

// A program that fills in the first form field of a document and saves it, over and over, until it is killed.
//   pdf_saving_child SOURCE TARGET
// It goes on from the number that the field of TARGET has, and prints each number once it is saved.

namespace {

int numberIn(const QString& path)
{
    const auto document = pdf::PDFDocument::open(path);
    if (!document)
        return 0;
    const auto fields = (*document)->page(0)->formFields();
    return fields && !fields->empty() ? fields->front().text.section(QLatin1Char(' '), 0, 0).toInt() : 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    const QString target = QString::fromLocal8Bit(argv[2]);
    const auto document = pdf::PDFDocument::open(QString::fromLocal8Bit(argv[1]));
    if (!document)
        return 1;
    const auto fields = (*document)->page(0)->formFields();
    if (!fields || fields->empty())
        return 1;
    for (int number = numberIn(target) + 1;; ++number) {
        const QString value = QStringLiteral("%1 ").arg(number).repeated(20);
        if (!(*document)->setFormValue(fields->front().widget, value) || !(*document)->write(target))
            return 1;
        std::printf("%d\n", number);
        std::fflush(stdout);
    }
}
