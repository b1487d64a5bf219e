// SPDX-License-Identifier: AGPL-3.0-or-later
#include "view/Subject.h"

#include "pdf/PDFDocument.h"
#include "pdfview/PDFView.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace quillo::benchmark {
namespace {

constexpr QSize viewSize(1000, 900);
constexpr int patience = 20'000;

} // namespace

std::unique_ptr<pdf::PDFView> show(const Subject& subject)
{
    const auto document = pdf::PDFDocument::open(subject.path);
    if (!document)
        return nullptr;
    auto view = std::make_unique<pdf::PDFView>();
    view->resize(viewSize);
    view->setDocument({*document, (*document)->pageCount(), std::make_shared<pdf::TileRenderer>(*document)});
    view->show();
    return waitUntilSharp(*view) ? std::move(view) : nullptr;
}

bool waitUntilSharp(pdf::PDFView& view)
{
    const QDeadlineTimer deadline(patience);
    while (!view.isSharp()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    view.viewport()->repaint();
    return true;
}

} // namespace quillo::benchmark
