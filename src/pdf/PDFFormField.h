// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QColor>
#include <QRectF>
#include <QString>

#include <optional>
#include <vector>

namespace pdf {

enum class FormFieldKind { text, checkBox, radioButton, comboBox, listBox, pushButton, signature };

enum class FormFieldAlignment { left, centre, right };

/// An entry of a combo box or a list box.
struct FormFieldOption
{
    /// What stands for the entry in the data.
    QString exportValue;
    /// What the user reads.
    QString displayText;

    friend bool operator==(const FormFieldOption&, const FormFieldOption&) = default;
};

/// Names a widget, the place on a page where a form field is shown, for as long as its document is open.
struct FormWidget
{
    /// The zero-based page.
    int page = -1;
    /// The number of the widget's object, or 0 where it has none.
    int object = 0;
    /// The widget's place among the annotations of the page; tells apart those without a number.
    int position = -1;

    friend bool operator==(const FormWidget&, const FormWidget&) = default;
};

/// Where a list box shows its options. In points, for the field as it is read, that is before it is turned.
struct FormFieldRows
{
    double fontSize = 0.0;
    /// From the upper edge of the field to that of the first row.
    double top = 0.0;
    /// From one row to the next.
    double height = 0.0;
    /// From the upper edge of a row to the line that its text stands on.
    double baseline = 0.0;
    /// From the left edge of the field to the texts; absent where they are aligned otherwise.
    std::optional<double> left;
};

/// A form field at one of the places where it is shown, as it was when it was read: a plain value. A field
/// with several widgets is read once for each of them, and all show the same value; of radio buttons and of
/// check boxes with different states each shows whether it is the one that is on.
struct PDFFormField
{
    FormWidget widget;
    FormFieldKind kind = FormFieldKind::text;
    /// The full name in the data: the names from the root of the field tree on, with dots between them.
    QString name;
    /// What a person is told the field is for; empty where the document does not say.
    QString alternateName;
    /// In page space, normalised.
    QRectF bounds;
    /// How far the field's content is turned anticlockwise on the page: 0, 90, 180 or 270.
    int rotation = 0;

    /// Not to be shown on the screen.
    bool isHidden = false;
    /// The value stays as it is: the field, its annotation, the permissions of the document or a signature in
    /// it say so.
    bool isReadOnly = false;
    bool isRequired = false;

    // Text fields.
    bool isMultiline = false;
    bool isPassword = false;
    /// Each character has a cell of its own; there are maximumLength cells.
    bool isComb = false;
    /// In characters; 0 is no limit.
    int maximumLength = 0;

    // Text, combo and list boxes.
    FormFieldAlignment alignment = FormFieldAlignment::left;
    /// In points; 0 fits the text to the field.
    double fontSize = 0.0;
    /// The PostScript name of the font that the field asks for, such as "Helvetica-Bold"; may be empty.
    QString fontName;
    QColor textColour = Qt::black;
    std::optional<QColor> backgroundColour;
    /// In points; 0 without a border.
    double borderWidth = 0.0;
    /// How many times its width the border takes at an edge: 2 where it looks raised or sunken.
    int borderParts = 1;

    // Combo and list boxes.
    std::vector<FormFieldOption> options;
    /// A combo box takes a text that is not among its options.
    bool isEditable = false;
    /// A list box takes several options at once.
    bool isMultipleChoice = false;
    /// The index of the option that the document wants at the top of a list box.
    int topOption = 0;
    /// Of a list box: where its appearance shows the options; absent where that cannot be told.
    std::optional<FormFieldRows> rows;

    // Check boxes and radio buttons.
    /// The name of the state in which this widget is on.
    QByteArray onState;
    /// A radio button that is on can be turned off, so that none of its group is.
    bool canTurnOff = true;

    // The value.
    /// Of a text field or a combo box, as the user reads it; lines end with line feeds.
    QString text;
    /// Of a check box or radio button.
    bool isOn = false;
    /// Of a combo or list box: indices of options, ascending. Empty for a combo box with a text of its own.
    std::vector<int> selection;

    /// True where the user may enter something: push buttons and signatures only stand on the page.
    bool isFillable() const
    {
        return kind != FormFieldKind::pushButton && kind != FormFieldKind::signature && !isHidden &&
               !isReadOnly;
    }
};

} // namespace pdf
