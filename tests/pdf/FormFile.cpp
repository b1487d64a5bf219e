// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormFile.h"

#include "pdf/PDFDisplayList.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

namespace pdf {
namespace {

QByteArray reference(int object)
{
    return QByteArray::number(object) + " 0 R ";
}

QByteArray widget(const QByteArray& entries)
{
    return "<</Type/Annot/Subtype/Widget/Rect[100 100 200 120]" + entries + ">>";
}

} // namespace

int FormFile::add(const QByteArray& entries)
{
    const int object = m_writer.add(widget(entries));
    addToPage(object);
    addToForm(object);
    return object;
}

std::vector<int> FormFile::addWithWidgets(const QByteArray& entries, const std::vector<QByteArray>& widgets)
{
    const int field = m_writer.add("null");
    addToForm(field);
    std::vector<int> objects;
    QByteArray kids;
    for (const QByteArray& own : widgets) {
        objects.push_back(m_writer.add(widget("/Parent " + reference(field) + own)));
        addToPage(objects.back());
        kids += reference(objects.back());
    }
    m_writer.replace(field, "<<" + entries + "/Kids[" + kids + "]>>");
    return objects;
}

void FormFile::addToPage(int object)
{
    m_widgets += reference(object);
}

void FormFile::addToForm(int object)
{
    m_fields += reference(object);
}

void FormFile::endPage()
{
    m_writer.addPage({}, "/Annots[" + m_widgets + "]" + m_pageEntries);
    m_widgets.clear();
}

QByteArray FormFile::bytes()
{
    endPage();
    m_writer.setCatalog("/AcroForm<</Fields[" + m_fields + "]" + m_formEntries + ">>");
    return m_writer.bytes();
}

std::shared_ptr<PDFDocument> FormFile::document()
{
    if (m_document)
        return m_document;
    if (auto opened = PDFDocument::open(m_folder.write(QStringLiteral("form.pdf"), bytes())))
        m_document = *opened;
    return m_document;
}

std::vector<PDFFormField> FormFile::fields()
{
    auto read = document()->page(0)->formFields();
    EXPECT_TRUE(read) << "the fields cannot be read";
    return read ? *read : std::vector<PDFFormField>();
}

PDFFormField FormFile::field(const char* name)
{
    for (const PDFFormField& field : fields()) {
        if (field.name == QLatin1String(name))
            return field;
    }
    ADD_FAILURE() << "there is no field " << name;
    return {};
}

Result<std::vector<int>> FormFile::set(const char* name, const FormValue& value)
{
    return document()->setFormValue(field(name).widget, value);
}

QImage FormFile::picture()
{
    const auto page = document()->page(0);
    QImage image(pixelSize(page->displaySize(), 1.0), QImage::Format_RGB32);
    image.fill(Qt::white);
    const auto list = page->annotationDisplayList();
    EXPECT_TRUE(list && list->draw(image, {0, 0}, 1.0)) << "the annotations cannot be drawn";
    return image;
}

QImage FormFile::pictureOf(const PDFFormField& field)
{
    return picture().copy(document()->page(0)->pageToDisplay().mapRect(field.bounds).toAlignedRect());
}

int darkPixels(const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qGray(image.pixel(x, y)) < 128;
    }
    return count;
}

} // namespace pdf
