// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/PDFError.h"
#include "pdfview/PDFView.h"

#include <QFuture>
#include <QString>

#include <optional>

namespace quillo {

/// A file on its way to the view: it is opened on another thread, and its first page is begun to be drawn as
/// soon as it is open.
struct DocumentOpening
{
    QString path;
    pdf::Cancellation cancellation;
    /// Fails with passwordRequired when there is no password or it is wrong.
    QFuture<pdf::Result<pdf::ShownDocument>> result;

    /// Begins to open the file. `scale` is what the first page will most likely be shown at, in device pixels
    /// per point. Without a password, one that the user gave earlier for the file is tried. Any thread, also
    /// before there is an application object.
    static DocumentOpening
    begin(const QString& path, double scale, const std::optional<QString>& password = {});

    /// Begins early what begin() will be asked for later: the next begin() for the same path without a
    /// password takes up this opening. Main thread.
    static void beginEarly(const QString& path, double scale);
};

} // namespace quillo
