// SPDX-License-Identifier: AGPL-3.0-or-later
// Puts one file through the engine, as a process of its own: opens it, reads the text and draws the content
// and the annotations of its first pages. Ends with 0 when the file was opened and with 1 when it was
// refused, after one line: processor time in milliseconds, peak memory in megabytes, pages read.

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int pagesToRead = 5;
constexpr double scale = 1.5;
// A page of several metres is drawn in part.
constexpr int maximumSide = 3000;

void draw(const pdf::Result<pdf::PDFDisplayList>& list, QImage& image)
{
    // What cannot be recorded or drawn is an answer too.
    if (list)
        (void)list->draw(image, {}, scale);
}

void readPage(pdf::PDFPage& page)
{
    if (const auto text = page.string()) {
        if (const auto selection = page.selection({0, text->size()}))
            (void)selection->bounds(page);
    }
    QImage image(
        pdf::pixelSize(page.displaySize(), scale).boundedTo({maximumSide, maximumSide}),
        QImage::Format_RGB32);
    image.fill(Qt::white);
    draw(page.contentDisplayList(), image);
    draw(page.annotationDisplayList(), image);
}

int readDocument(const QString& path, int* pagesRead)
{
    const auto document = pdf::PDFDocument::open(path);
    if (!document)
        return 1;
    const int pageCount = std::min((*document)->pageCount(), pagesToRead);
    for (int i = 0; i < pageCount; ++i) {
        if (const auto page = (*document)->page(i)) {
            readPage(*page);
            ++*pagesRead;
        }
    }
    return 0;
}

long milliseconds(const timeval& time)
{
    return time.tv_sec * 1000 + time.tv_usec / 1000;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2)
        return 2;
    int pagesRead = 0;
    const int status = readDocument(QString::fromLocal8Bit(argv[1]), &pagesRead);
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf(
        "%ld %ld %d\n", milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime), usage.ru_maxrss / 1024,
        pagesRead);
    return status;
}
