// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/SlowlyPrinted.h"

#include "support/ToolRun.h"

#include <gtest/gtest.h>

QString writeSlowlyPrinted(const TestFolder& folder)
{
    constexpr int pageCount = 5000;
    PDFWriter writer;
    for (int i = 0; i < pageCount; ++i)
        writer.addPage(showText(72, 700, "Slow"));
    const QString plain = folder.write(QStringLiteral("plain.pdf"), writer.bytes());
    QString slow = folder.path(QStringLiteral("slow.pdf"));
    const auto result = runTool(
        QStringLiteral("qpdf"),
        {QStringLiteral("--encrypt"), QString(), QStringLiteral("owner"), QStringLiteral("256"),
         QStringLiteral("--print=low"), QStringLiteral("--"), plain, slow});
    EXPECT_EQ(result.value_or(ToolResult()).exitCode, 0) << "qpdf is needed";
    return slow;
}
