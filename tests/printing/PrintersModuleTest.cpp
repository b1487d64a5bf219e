// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printing/PrintersModule.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace quillo {
namespace {

TEST(PrintersModuleTest, AsksThePrintingSystemThroughTheModuleBesideTheProgram)
{
    const PrinterListing listing = printersModule(QCoreApplication::applicationDirPath())();
    EXPECT_EQ(listing.error, QString());
    // Whatever printers this machine has, each can be named.
    for (const PrinterDescription& printer : listing.printers) {
        EXPECT_FALSE(printer.name.isEmpty());
        EXPECT_FALSE(printer.description.isEmpty());
        EXPECT_TRUE(printer.papers.empty() || printer.usualPaper < printer.papers.size());
    }
}

TEST(PrintersModuleTest, SaysWhyThereAreNoPrintersWhenTheModuleIsMissing)
{
    const TestFolder folder;
    const PrinterListing listing = printersModule(folder.path(QString()))();
    EXPECT_TRUE(listing.printers.empty());
    EXPECT_TRUE(listing.error.contains(QStringLiteral("quillo-printers"))) << listing.error.toStdString();
}

} // namespace
} // namespace quillo
