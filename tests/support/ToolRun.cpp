// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/ToolRun.h"

#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <QStandardPaths>

#include <sys/wait.h>

std::optional<ToolResult> runTool(const QString& program, const QStringList& arguments)
{
    using quillo::ChildProcess;
    if (QStandardPaths::findExecutable(program).isEmpty())
        return std::nullopt;
    ChildProcess process(program, arguments, {}, ChildProcess::Errors::output);
    const auto status = process.waitForEnd();
    if (!status) {
        ADD_FAILURE() << program.toStdString() << " did not end";
        return ToolResult();
    }
    return ToolResult{WIFEXITED(*status) ? WEXITSTATUS(*status) : -1, process.takeOutput()};
}
