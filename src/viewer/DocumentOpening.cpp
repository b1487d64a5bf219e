// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/DocumentOpening.h"

#include "document/DocumentPasswords.h"
#include "pdf/PDFDisplayList.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "platform/Actor.h"

#include <utility>

namespace quillo {
namespace {

// As much of the first page as fits a window of usual height; at another scale it does as a first guess.
constexpr int firstPageRows = 2;

std::optional<DocumentOpening>& earlyOpening()
{
    static auto* const opening = new std::optional<DocumentOpening>;
    return *opening;
}

Actor& openingActor()
{
    static auto* const actor = new Actor(QStringLiteral("Document opening"));
    return *actor;
}

/// Puts the first page to work, so that it is there when the window is.
void beginFirstPage(const pdf::ShownDocument& shown, double scale)
{
    const auto page = shown.document->page(0);
    if (!page)
        return;
    const QSize pixels = pdf::pixelSize(page->displaySize(), scale);
    const QRect area(0, 0, pixels.width(), firstPageRows * pdf::tileSide);
    shown.renderer->want(pdf::tilesIn(area, 0, scale, pixels));
}

pdf::Result<pdf::ShownDocument> open(
    const QString& path, double scale, const std::optional<QString>& password,
    const pdf::Cancellation& cancellation)
{
    auto document = pdf::PDFDocument::open(path, cancellation);
    if (!document)
        return document.error();
    if ((*document)->isLocked()) {
        const auto key = password ? password : DocumentPasswords::shared().password(path);
        if (!key || !(*document)->unlock(*key)) {
            return pdf::PDFError{
                pdf::PDFError::Code::passwordRequired, QStringLiteral("a password is required")};
        }
    }
    const pdf::ShownDocument shown{
        *document, (*document)->pageCount(), std::make_shared<pdf::TileRenderer>(*document)};
    if (shown.pageCount > 0)
        beginFirstPage(shown, scale);
    return shown;
}

DocumentOpening beginNow(const QString& path, double scale, const std::optional<QString>& password)
{
    DocumentOpening opening{path, {}, {}};
    opening.result = openingActor().run([path, scale, password, cancellation = opening.cancellation] {
        return open(path, scale, password, cancellation);
    });
    return opening;
}

} // namespace

DocumentOpening
DocumentOpening::begin(const QString& path, double scale, const std::optional<QString>& password)
{
    if (auto early = std::exchange(earlyOpening(), std::nullopt)) {
        if (early->path == path && !password)
            return *early;
        early->cancellation.cancel();
    }
    return beginNow(path, scale, password);
}

void DocumentOpening::beginEarly(const QString& path, double scale)
{
    earlyOpening() = beginNow(path, scale, std::nullopt);
}

} // namespace quillo
