// SPDX-License-Identifier: AGPL-3.0-or-later
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPdfDocument>
#include <QPdfDocumentRenderOptions>

/// Draws a page of a PDF file, counted from 1, with its annotations, at so many pixels a point; without one,
/// only opens the file:
/// render_with_pdfium FILE [PICTURE PAGE SCALE]
int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    if (argc != 2 && argc != 5)
        return 2;
    QPdfDocument document;
    if (document.load(QString::fromLocal8Bit(argv[1])) != QPdfDocument::Error::None)
        return 1;
    if (argc == 2)
        return document.pageCount() > 0 ? 0 : 1;
    const int index = QByteArray(argv[3]).toInt() - 1;
    QPdfDocumentRenderOptions options;
    options.setRenderFlags(QPdfDocumentRenderOptions::RenderFlag::Annotations);
    const QSize size = (document.pagePointSize(index) * QByteArray(argv[4]).toDouble()).toSize();
    const QImage page = document.render(index, size, options);
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.drawImage(0, 0, page);
    painter.end();
    return picture.save(QString::fromLocal8Bit(argv[2])) ? 0 : 1;
}
