// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>

namespace pdf {
class PDFDocument;
class PDFView;
} // namespace pdf

namespace quillo::benchmark {

/// A document to measure with.
struct Subject
{
    QString name;
    QString path;
    int pageCount = 0;
};

/// The document in a view of its own that is on the screen, with its first page drawn. Null when that fails.
std::unique_ptr<pdf::PDFView> show(const Subject& subject);

/// Waits until everything visible is drawn at the present scale and painted; false when it takes too long.
bool waitUntilSharp(pdf::PDFView& view);

} // namespace quillo::benchmark
