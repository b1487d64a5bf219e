// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"

#include <QByteArray>
#include <QImage>

#include <memory>
#include <vector>

namespace pdf {

/// A PDF file of one page, or more, with form fields, each given by the entries of its widget.
class FormFile
{
public:
    /// Adds a widget that is a field of its own and gives its object number. Unless the entries say otherwise
    /// it is 100 points wide and 20 high.
    int add(const QByteArray& entries);
    /// Adds a field with widgets that have no names of their own; gives the numbers of the widgets.
    std::vector<int> addWithWidgets(const QByteArray& entries, const std::vector<QByteArray>& widgets);
    /// Puts an object on the page as an annotation.
    void addToPage(int object);
    /// Puts a node into the form.
    void addToForm(int object);

    void setPageEntries(const QByteArray& entries) { m_pageEntries = entries; }
    /// Of the form's dictionary.
    void setFormEntries(const QByteArray& entries) { m_formEntries = entries; }
    PDFWriter& writer() { return m_writer; }

    /// Ends the page; what is added from now on goes to the next.
    void endPage();
    /// The file's content.
    QByteArray bytes();

    /// The file, opened; the same at every call.
    std::shared_ptr<PDFDocument> document();
    /// The fields of the page as they are now.
    std::vector<PDFFormField> fields();
    /// The field of this name as it is now.
    PDFFormField field(const char* name);
    /// Sets the first widget of the field of this name.
    Result<std::vector<int>> set(const char* name, const FormValue& value);
    /// What the page's annotations look like, drawn on white, one pixel for a point.
    QImage picture();
    /// The part of the picture where the field is.
    QImage pictureOf(const PDFFormField& field);

private:
    TestFolder m_folder;
    PDFWriter m_writer;
    QByteArray m_widgets;
    QByteArray m_fields;
    QByteArray m_pageEntries;
    QByteArray m_formEntries;
    std::shared_ptr<PDFDocument> m_document;
};

/// How many pixels are darker than the middle between black and white.
int darkPixels(const QImage& image);

} // namespace pdf
