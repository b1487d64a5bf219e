// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QLineEdit>

namespace pdf {

/// A line edit that shows its characters in the cells of a comb.
class CombLineEdit : public QLineEdit
{
    Q_OBJECT

public:
    CombLineEdit(int cells, QWidget* parent);

    /// The character between the cells at this place.
    int positionAt(int x) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery property) const override;

private:
    double cellWidth() const;
    /// The cell before which the text begins.
    int firstCell(int length) const;
    QRectF cursorRect() const;

    const int m_cells;
    /// What an input method is composing.
    QString m_composed;
};

} // namespace pdf
