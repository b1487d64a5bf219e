// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/FilledForm.h"
#include "pdf/Tools.h"

#include <QImage>

#include <vector>

namespace pdf {

/// A page of a form as another program shows it before the form is filled, and as the engine does.
class FormPicture
{
public:
    FormPicture(Renderer renderer, const QString& path, int page);

    /// False when the program is not installed or cannot draw the page.
    bool isDrawn() const { return !m_picture.isNull(); }

    /// Expects the program to show the new values in the saved file where and how the engine does, and all
    /// that is on the page besides the fields exactly as before. Gives how many fields were looked at.
    int expectFilled(const QString& saved, const std::vector<FilledField>& fields) const;

private:
    QRect areaOf(const PDFFormField& field) const;
    /// False where nothing can be said, because the program hides the field below something else.
    bool expectAlike(const QImage& picture, const QImage& ownPicture, const QRect& area) const;

    Renderer m_renderer;
    int m_page;
    QImage m_picture;
    QImage m_ownPicture;
    /// Pixels a point.
    double m_scale = 1.0;
    QTransform m_toPixels;
    /// Fields that are drawn anew whichever is filled.
    std::vector<QRect> m_renewed;
};

} // namespace pdf
