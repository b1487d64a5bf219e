// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormPictures.h"

#include "pdf/PDFDisplayList.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pdf {
namespace {

// Pixels a point.
constexpr int scale = 2;

// Programs place and smooth the same shapes differently by a pixel or so, and take fonts that are not
// embedded from different families. Where another value is shown, some half of the pixels that change are
// strange.
constexpr double toleratedShare = 0.1;
constexpr double toleratedPixels = 4.0;

/// Qt has PDFium draw every annotation but form fields. A stamp has the same appearance streams. Gives the
/// path of the changed copy; empty where qpdf is not installed or cannot read the file.
QString withStamps(const QString& path, const TestFolder& folder)
{
    const QString plain = folder.path(QStringLiteral("plain.pdf"));
    runTool(
        QStringLiteral("qpdf"),
        {QStringLiteral("--no-warn"), QStringLiteral("--qdf"), QStringLiteral("--decrypt"),
         QStringLiteral("--object-streams=disable"), path, plain});
    if (!QFile::exists(plain))
        return {};
    // Of the same length, for the offsets in the file.
    return folder.write(
        QStringLiteral("stamps.pdf"), readFile(plain).replace("/Subtype /Widget", "/Subtype /Stamp "));
}

QImage drawnByEngine(PDFPage& page, double pixelsPerPoint)
{
    QImage image(pixelSize(page.displaySize(), pixelsPerPoint), QImage::Format_RGB32);
    image.fill(Qt::white);
    for (const auto& list : {page.contentDisplayList(), page.annotationDisplayList()}) {
        if (list)
            (void)list->draw(image, {}, pixelsPerPoint);
    }
    return image;
}

QImage drawnBy(Renderer renderer, const QString& path, int page)
{
    const TestFolder folder;
    const QString file = renderer == Renderer::pdfium ? withStamps(path, folder) : path;
    return file.isEmpty() ? QImage() : tryRenderingWith(renderer, file, page, scale).value_or(QImage());
}

bool isAlike(QRgb a, QRgb b)
{
    constexpr int shade = 24;
    return std::abs(qRed(a) - qRed(b)) <= shade && std::abs(qGreen(a) - qGreen(b)) <= shade &&
           std::abs(qBlue(a) - qBlue(b)) <= shade;
}

bool hasChanged(const QImage& before, const QImage& after, int x, int y)
{
    return !isAlike(before.pixel(x, y), after.pixel(x, y));
}

/// Whether the picture has something as light, and something as dark, near the place.
bool hasNearby(const QImage& image, int x, int y, int grey)
{
    constexpr int reach = 2;
    constexpr int shade = 40;
    int darkest = 255;
    int lightest = 0;
    for (int v = std::max(0, y - reach); v <= std::min(image.height() - 1, y + reach); ++v) {
        for (int u = std::max(0, x - reach); u <= std::min(image.width() - 1, x + reach); ++u) {
            const int other = qGray(image.pixel(u, v));
            darkest = std::min(darkest, other);
            lightest = std::max(lightest, other);
        }
    }
    return grey >= darkest - shade && grey <= lightest + shade;
}

/// Whether either picture has something that is lighter or darker than all that the other has near the place.
bool isStrange(const QImage& one, const QImage& other, int x, int y)
{
    return !hasNearby(other, x, y, qGray(one.pixel(x, y))) || !hasNearby(one, x, y, qGray(other.pixel(x, y)));
}

bool isAlikeWithin(const QRect& area, const QImage& one, const QImage& other)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (hasChanged(one, other, x, y))
                return false;
        }
    }
    return true;
}

/// Whether the field has to look otherwise than before. Texts are looked for elsewhere; real files show some
/// that are not their fields' values.
bool hasNewLook(const PDFFormField& before, const PDFFormField& after)
{
    return before.isOn != after.isOn ||
           (after.kind == FormFieldKind::listBox && before.selection != after.selection);
}

int changedPixels(const QImage& before, const QImage& after)
{
    int count = 0;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x)
            count += before.pixel(x, y) != after.pixel(x, y);
    }
    return count;
}

QImage without(const std::vector<QRect>& areas, QImage picture)
{
    QPainter painter(&picture);
    for (const QRect& area : areas)
        painter.fillRect(area, Qt::black);
    painter.end();
    return picture;
}

} // namespace

FormPicture::FormPicture(Renderer renderer, const QString& path, int page)
    : m_renderer(renderer)
    , m_page(page)
    , m_picture(drawnBy(renderer, path, page))
{
    const auto document = PDFDocument::open(path);
    const auto ownPage = document ? (*document)->page(page) : nullptr;
    if (!ownPage || m_picture.isNull())
        return;
    // Not every program knows of units other than the point.
    const double ratio = m_picture.width() / (ownPage->displaySize().width() * scale);
    m_scale = std::abs(ratio - 1.0) < 0.02 ? scale : scale * ratio;
    m_toPixels = ownPage->pageToDisplay() * QTransform::fromScale(m_scale, m_scale);
    m_ownPicture = drawnByEngine(*ownPage, m_scale);
    if (!isDrawnByViewers(path))
        return;
    if (const auto fields = ownPage->formFields()) {
        for (const PDFFormField& field : *fields)
            m_renewed.push_back(areaOf(field));
    }
}

int FormPicture::expectFilled(const QString& saved, const std::vector<FilledField>& fields) const
{
    const auto document = PDFDocument::open(saved);
    const auto page = document ? (*document)->page(m_page) : nullptr;
    const QImage picture = drawnBy(m_renderer, saved, m_page);
    EXPECT_TRUE(page && picture.size() == m_picture.size()) << "the saved page cannot be drawn any more";
    if (!page || picture.size() != m_picture.size())
        return 0;
    const QImage ownPicture = drawnByEngine(*page, m_scale);
    std::vector<QRect> areas = m_renewed;
    int count = 0;
    for (const auto& [before, field] : fields) {
        if (field.widget.page != m_page)
            continue;
        SCOPED_TRACE(field.name.toStdString());
        areas.push_back(areaOf(field));
        const QRect area = areas.back() & picture.rect() & ownPicture.rect();
        if (!area.isEmpty() && hasNewLook(before, field)) {
            EXPECT_FALSE(isAlikeWithin(area, m_ownPicture, ownPicture))
                << "the field does not show its value";
        }
        count += expectAlike(picture, ownPicture, area);
    }
    EXPECT_EQ(changedPixels(without(areas, m_picture), without(areas, picture)), 0)
        << "something besides the fields looks otherwise";
    return count;
}

QRect FormPicture::areaOf(const PDFFormField& field) const
{
    // Borders reach a little over the edges.
    return m_toPixels.mapRect(field.bounds).toAlignedRect().adjusted(-scale, -scale, scale, scale);
}

bool FormPicture::expectAlike(const QImage& picture, const QImage& ownPicture, const QRect& area) const
{
    int changed = 0;
    int strange = 0;
    int strangeBefore = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const bool isChanged = hasChanged(m_ownPicture, ownPicture, x, y);
            changed += isChanged;
            if (isChanged || hasChanged(m_picture, picture, x, y))
                strange += isStrange(ownPicture, picture, x, y);
            strangeBefore += isStrange(m_ownPicture, m_picture, x, y);
        }
    }
    // Some draw a field that others draw hidden below another annotation.
    if (strangeBefore > area.width() * area.height() / 2)
        return false;
    EXPECT_LE(strange, changed * toleratedShare + toleratedPixels) << "of " << changed << " changed pixels";
    return true;
}

} // namespace pdf
