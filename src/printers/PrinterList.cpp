// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printers/PrinterList.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>
#include <QPrinterInfo>

#include <algorithm>

namespace quillo {
namespace {

Paper paperOf(QPrinter& printer, const QPageSize& size)
{
    printer.setPageSize(size);
    QPageLayout layout = printer.pageLayout();
    layout.setUnits(QPageLayout::Point);
    return {size.key(), size.name(), size.size(QPageSize::Point), layout.minimumMargins()};
}

PrinterDescription describe(const QPrinterInfo& info)
{
    PrinterDescription result;
    result.name = info.printerName();
    result.description = info.description().isEmpty() ? info.printerName() : info.description();
    result.isDefault = info.isDefault();
    const auto duplex = info.supportedDuplexModes();
    result.printsTwoSided = std::any_of(
        duplex.begin(), duplex.end(), [](QPrinter::DuplexMode mode) { return mode != QPrinter::DuplexNone; });
    result.printsColour = info.supportedColorModes().contains(QPrinter::Color);
    QPrinter printer(info, QPrinter::HighResolution);
    for (const QPageSize& size : info.supportedPageSizes()) {
        if (size == info.defaultPageSize())
            result.usualPaper = result.papers.size();
        result.papers.push_back(paperOf(printer, size));
    }
    return result;
}

} // namespace

std::vector<PrinterDescription> listPrinters()
{
    std::vector<PrinterDescription> result;
    for (const QPrinterInfo& info : QPrinterInfo::availablePrinters())
        result.push_back(describe(info));
    return result;
}

} // namespace quillo
