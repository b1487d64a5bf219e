// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printing/PrintersModule.h"

#include <QLibrary>

#include <mutex>

namespace quillo {

PrinterSource printersModule(const QString& folder)
{
    return [folder]() -> PrinterListing {
        static std::mutex mutex;
        const std::lock_guard lock(mutex);
        QLibrary library(folder + QStringLiteral("/quillo-printers"));
        const auto list =
            reinterpret_cast<decltype(&quilloListPrinters)>(library.resolve("quilloListPrinters"));
        if (list == nullptr)
            return {{}, library.errorString()};
        PrinterListing listing;
        list(listing.printers);
        return listing;
    };
}

} // namespace quillo
