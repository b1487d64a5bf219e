// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/FormFile.h"
#include "pdfview/ViewSupport.h"

#include <QApplication>
#include <QTest>

#include <vector>

namespace pdf {

/// A view on a form of pages of 300 by 400 points.
class FormViewFixture : public PDFViewFixture
{
protected:
    FormViewFixture() { m_file.setPageEntries("/MediaBox[0 0 300 400]"); }

    /// Shows the form and waits until its fields answer to the mouse.
    void showForm(QSize size = {400, 500})
    {
        show(m_file.bytes(), size);
        m_view->activateWindow();
        m_view->setFocus();
        ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == m_view.get(); }));
        ASSERT_TRUE(fieldsAnswer());
    }

    /// Waits until a field that can be filled in is tinted.
    bool fieldsAnswer()
    {
        for (const PDFFormField& field : fields(0)) {
            if (field.isFillable()) {
                return QTest::qWaitFor([&] {
                    QTest::mouseMove(m_view->viewport(), placeOf(field) + QPoint(1, 0));
                    QTest::mouseMove(m_view->viewport(), placeOf(field));
                    return m_view->viewport()->cursor().shape() != Qt::ArrowCursor;
                });
            }
        }
        return true;
    }

    std::vector<PDFFormField> fields(int page)
    {
        auto read = m_view->document()->page(page)->formFields();
        EXPECT_TRUE(read);
        return read ? *read : std::vector<PDFFormField>();
    }

    PDFFormField field(const char* name)
    {
        for (int page = 0; page < m_view->pageCount(); ++page) {
            for (const PDFFormField& field : fields(page)) {
                if (field.name == QLatin1String(name))
                    return field;
            }
        }
        ADD_FAILURE() << "there is no field " << name;
        return {};
    }

    QRectF rectOf(const PDFFormField& field)
    {
        const auto page = m_view->document()->page(field.widget.page);
        const QRectF rect = page->pageToDisplay().mapRect(field.bounds);
        const double scale = m_view->scaleFactor();
        return {rect.topLeft() * scale + m_view->pageRect(field.widget.page).topLeft(), rect.size() * scale};
    }

    QPoint placeOf(const PDFFormField& field) { return rectOf(field).center().toPoint(); }

    void click(const char* name) { click(field(name)); }
    void click(const PDFFormField& field)
    {
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, placeOf(field));
    }

    /// The control that has the keyboard, or null when it is not of this kind.
    template <typename Control>
    Control* editor()
    {
        return qobject_cast<Control*>(QApplication::focusWidget());
    }

    bool isEditing() { return QApplication::focusWidget() != m_view.get(); }

    /// Waits until the document has the text.
    bool hasText(const char* name, const QString& text)
    {
        return QTest::qWaitFor([&] { return field(name).text == text; });
    }

    FormFile m_file;
};

} // namespace pdf
