// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/PDFWriter.h"

#include <QFile>

#include <utility>

namespace {

QByteArray reference(int number)
{
    return QByteArray::number(number) + " 0 R";
}

} // namespace

PDFWriter::PDFWriter()
    : m_objects(2)
{
    m_helvetica = add("<</Type/Font/Subtype/Type1/BaseFont/Helvetica/Encoding/WinAnsiEncoding>>");
}

int PDFWriter::add(const QByteArray& object)
{
    m_objects.push_back(object);
    return static_cast<int>(m_objects.size());
}

int PDFWriter::addStream(const QByteArray& data, const QByteArray& entries)
{
    return add(
        "<</Length " + QByteArray::number(data.size()) + entries + ">>\nstream\n" + data + "\nendstream");
}

void PDFWriter::replace(int number, const QByteArray& object)
{
    m_objects[static_cast<std::size_t>(number - 1)] = object;
}

int PDFWriter::addPage(const QByteArray& content, const QByteArray& entries)
{
    const int contents = addStream(content);
    QByteArray page = "<</Type/Page/Parent 2 0 R/Contents " + reference(contents) +
                      "/Resources<</Font<</F1 " + reference(m_helvetica) + m_fonts + ">>" + m_resources +
                      ">>";
    if (!entries.contains("/MediaBox"))
        page += "/MediaBox[0 0 612 792]";
    m_pages.push_back(add(page + entries + ">>"));
    return m_pages.back();
}

QByteArray PDFWriter::bytes() const
{
    std::vector<QByteArray> objects = m_objects;
    objects[0] = "<</Type/Catalog/Pages 2 0 R" + m_catalog + ">>";
    if (objects[1].isEmpty()) {
        QByteArray kids;
        for (const int page : m_pages)
            kids += reference(page) + ' ';
        const QByteArray count =
            m_count.isEmpty() ? QByteArray::number(static_cast<int>(m_pages.size())) : m_count;
        objects[1] = "<</Type/Pages/Kids[" + kids + "]/Count " + count + ">>";
    }

    QByteArray file = "%PDF-1.7\n";
    QByteArray table =
        "xref\n0 " + QByteArray::number(static_cast<int>(objects.size() + 1)) + "\n0000000000 65535 f \n";
    for (std::size_t i = 0; i < objects.size(); ++i) {
        table += QByteArray::number(file.size()).rightJustified(10, '0') + " 00000 n \n";
        file += QByteArray::number(static_cast<int>(i + 1)) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const QByteArray start = QByteArray::number(file.size());
    file += table + "trailer\n<</Size " + QByteArray::number(static_cast<int>(objects.size() + 1)) +
            "/Root 1 0 R>>\nstartxref\n" + start + "\n%%EOF\n";
    return file;
}

QString TestFolder::write(const QString& name, const QByteArray& bytes) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("the test's file %s cannot be written", qPrintable(file.fileName()));
    return file.fileName();
}

QByteArray showText(double x, double y, const QByteArray& text)
{
    return "BT /F1 12 Tf 1 0 0 1 " + QByteArray::number(x) + ' ' + QByteArray::number(y) + " Tm (" + text +
           ") Tj ET\n";
}
