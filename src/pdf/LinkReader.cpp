// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/LinkReader.h"

#include "pdf/Engine.h"
#include "pdf/Handles.h"
#include "pdf/Limits.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

// Where MuPDF is called, nothing is made that would have to be destroyed: its errors skip destructors.
namespace pdf {
namespace {

/// Where the operands of a destination are in its array, which begins with the page and the kind; 0 for none.
struct DestinationKind
{
    const char* name;
    int left;
    int top;
    int zoom;
};

constexpr std::array<DestinationKind, 8> destinationKinds = {{
    {"XYZ", 2, 3, 4},
    {"Fit", 0, 0, 0},
    {"FitH", 0, 2, 0},
    {"FitV", 2, 0, 0},
    {"FitR", 2, 5, 0},
    {"FitB", 0, 0, 0},
    {"FitBH", 0, 2, 0},
    {"FitBV", 2, 0, 0},
}};

std::optional<double> operand(fz_context* ctx, pdf_obj* array, int index)
{
    pdf_obj* object = index > 0 ? pdf_array_get(ctx, array, index) : nullptr;
    if (!pdf_is_number(ctx, object))
        return std::nullopt;
    const double value = pdf_to_real(ctx, object);
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// Follows names to the array that says where to go; null when there is none.
pdf_obj* destinationArray(fz_context* ctx, pdf_document* document, pdf_obj* object)
{
    if (pdf_is_name(ctx, object) || pdf_is_string(ctx, object))
        object = pdf_lookup_dest(ctx, document, object);
    if (pdf_is_dict(ctx, object))
        object = pdf_dict_get(ctx, object, PDF_NAME(D));
    return pdf_is_array(ctx, object) ? object : nullptr;
}

void readDestination(fz_context* ctx, DocumentHandle& document, pdf_obj* object, PDFLink& link)
{
    pdf_obj* array = destinationArray(ctx, document.document, object);
    if (!array)
        return;
    pdf_obj* page = pdf_array_get(ctx, array, 0);
    PDFDestination destination;
    // Some writers number the pages instead of naming them.
    destination.page = pdf_is_int(ctx, page) ? pdf_to_int(ctx, page) : document.pages.indexOf(ctx, page);
    if (destination.page < 0 || destination.page >= document.pages.pageCount())
        return;
    const char* name = pdf_to_name(ctx, pdf_array_get(ctx, array, 1));
    const auto* const kind =
        std::find_if(destinationKinds.begin(), destinationKinds.end(), [&](const DestinationKind& other) {
            return std::strcmp(other.name, name) == 0;
        });
    if (kind != destinationKinds.end()) {
        destination.left = operand(ctx, array, kind->left);
        destination.top = operand(ctx, array, kind->top);
        destination.zoom = operand(ctx, array, kind->zoom);
        if (destination.zoom && *destination.zoom <= 0)
            destination.zoom.reset();
    }
    link.target = destination;
}

void readAddress(fz_context* ctx, pdf_document* document, pdf_obj* action, PDFLink& link)
{
    pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, document), PDF_NAME(Root));
    pdf_obj* base = pdf_dict_gets(ctx, pdf_dict_get(ctx, root, PDF_NAME(URI)), "Base");
    pdf_obj* address = pdf_dict_get(ctx, action, PDF_NAME(URI));
    if (!pdf_is_string(ctx, address) || pdf_to_str_len(ctx, address) > limits::linkAddress)
        return;
    std::size_t baseLength = 0;
    std::size_t length = 0;
    const char* baseText = pdf_to_string(ctx, base, &baseLength);
    const char* text = pdf_to_string(ctx, address, &length);
    if (const auto url = linkAddress(
            QByteArray(text, static_cast<qsizetype>(length)),
            QByteArray(baseText, static_cast<qsizetype>(baseLength))))
        link.target = *url;
}

void readNamedAction(fz_context* ctx, DocumentHandle& document, int pageIndex, pdf_obj* action, PDFLink& link)
{
    const char* name = pdf_to_name(ctx, pdf_dict_get(ctx, action, PDF_NAME(N)));
    const int last = document.pages.pageCount() - 1;
    PDFDestination destination;
    if (std::strcmp(name, "FirstPage") == 0)
        destination.page = 0;
    else if (std::strcmp(name, "LastPage") == 0)
        destination.page = last;
    else if (std::strcmp(name, "NextPage") == 0)
        destination.page = std::min(pageIndex + 1, last);
    else if (std::strcmp(name, "PrevPage") == 0)
        destination.page = std::max(pageIndex - 1, 0);
    else
        return;
    link.target = destination;
}

void readTarget(fz_context* ctx, DocumentHandle& document, int pageIndex, pdf_obj* annotation, PDFLink& link)
{
    if (pdf_obj* destination = pdf_dict_get(ctx, annotation, PDF_NAME(Dest))) {
        readDestination(ctx, document, destination, link);
        return;
    }
    pdf_obj* action = pdf_dict_get(ctx, annotation, PDF_NAME(A));
    const char* kind = pdf_to_name(ctx, pdf_dict_get(ctx, action, PDF_NAME(S)));
    if (std::strcmp(kind, "GoTo") == 0)
        readDestination(ctx, document, pdf_dict_get(ctx, action, PDF_NAME(D)), link);
    else if (std::strcmp(kind, "URI") == 0)
        readAddress(ctx, document.document, action, link);
    else if (std::strcmp(kind, "Named") == 0)
        readNamedAction(ctx, document, pageIndex, action, link);
}

/// A link whose target is damaged leads nowhere.
void readTargetIfSound(
    fz_context* ctx, DocumentHandle& document, int pageIndex, pdf_obj* annotation, PDFLink& link)
{
    fz_try(ctx)
    {
        readTarget(ctx, document, pageIndex, annotation, link);
    }
    fz_catch(ctx)
    {
        engine::rethrowUnlessDamage(ctx);
    }
}

bool isShownLink(fz_context* ctx, pdf_obj* annotation)
{
    constexpr int hidden = PDF_ANNOT_IS_HIDDEN | PDF_ANNOT_IS_NO_VIEW;
    return pdf_name_eq(ctx, pdf_dict_get(ctx, annotation, PDF_NAME(Subtype)), PDF_NAME(Link)) &&
           !(pdf_dict_get_int(ctx, annotation, PDF_NAME(F)) & hidden);
}

} // namespace

void readLinks(fz_context* ctx, DocumentHandle& document, const PageHandle& page, std::vector<PDFLink>& links)
{
    pdf_obj* annotations = pdf_dict_get(ctx, page.object, PDF_NAME(Annots));
    const int count = std::min(pdf_array_len(ctx, annotations), limits::annotationsPerPage);
    for (int i = 0; i < count; ++i) {
        if (CookieScope::current()->isStopped())
            fz_throw(ctx, FZ_ERROR_ABORT, "the operation was stopped");
        pdf_obj* annotation = pdf_array_get(ctx, annotations, i);
        if (!isShownLink(ctx, annotation))
            continue;
        const fz_rect rect = pdf_dict_get_rect(ctx, annotation, PDF_NAME(Rect));
        links.emplace_back();
        links.back().bounds = QRectF(QPointF(rect.x0, rect.y0), QPointF(rect.x1, rect.y1)).normalized();
        readTargetIfSound(ctx, document, page.index, annotation, links.back());
    }
}

} // namespace pdf
