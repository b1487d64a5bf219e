// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

struct ToolResult
{
    int exitCode = -1;
    /// Standard output and error.
    QByteArray output;
};

/// Runs another program to its end; absent when it is not installed. A program that hangs is a failure.
std::optional<ToolResult> runTool(const QString& program, const QStringList& arguments);
