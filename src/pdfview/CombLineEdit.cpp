// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/CombLineEdit.h"

#include <QInputMethodEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pdf {

CombLineEdit::CombLineEdit(int cells, QWidget* parent)
    : QLineEdit(parent)
    , m_cells(cells)
{
    setFrame(false);
    setMaxLength(cells);
}

int CombLineEdit::positionAt(int x) const
{
    const int length = static_cast<int>(text().size());
    const int boundary = static_cast<int>(std::lround(x / cellWidth())) - firstCell(length);
    return std::clamp(boundary, 0, length);
}

double CombLineEdit::cellWidth() const
{
    return static_cast<double>(width()) / m_cells;
}

int CombLineEdit::firstCell(int length) const
{
    const int free = std::max(0, m_cells - length);
    if (alignment() & Qt::AlignHCenter)
        return free / 2;
    return alignment() & Qt::AlignRight ? free : 0;
}

QRectF CombLineEdit::cursorRect() const
{
    const int length = static_cast<int>(text().size() + m_composed.size());
    const int place = cursorPosition() + static_cast<int>(m_composed.size()) + firstCell(length);
    const double height = fontMetrics().height();
    return {place * cellWidth(), (this->height() - height) / 2.0, 1.0, height};
}

void CombLineEdit::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().brush(QPalette::Base));
    QString shown = text();
    shown.insert(cursorPosition(), m_composed);
    const int length = static_cast<int>(shown.size());
    const int first = firstCell(length);
    const auto cell = [&](int index) {
        return QRectF((first + index) * cellWidth(), 0, cellWidth(), height());
    };
    painter.setPen(palette().color(QPalette::Mid));
    for (int i = 1; i < m_cells; ++i)
        painter.drawLine(QPointF(i * cellWidth(), 0), QPointF(i * cellWidth(), height()));
    for (int i = 0; i < length; ++i) {
        const bool isSelected =
            hasSelectedText() && i >= selectionStart() && i < selectionStart() + selectionLength();
        if (isSelected)
            painter.fillRect(cell(i).adjusted(1, 0, -1, 0), palette().brush(QPalette::Highlight));
        painter.setPen(palette().color(isSelected ? QPalette::HighlightedText : QPalette::Text));
        painter.drawText(cell(i), Qt::AlignCenter, shown.mid(i, 1));
    }
    if (hasFocus() && !hasSelectedText())
        painter.fillRect(cursorRect(), palette().brush(QPalette::Text));
}

void CombLineEdit::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        setCursorPosition(positionAt(event->pos().x()));
}

void CombLineEdit::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    const int start = hasSelectedText() && selectionStart() == cursorPosition()
                          ? selectionEnd()
                          : (hasSelectedText() ? selectionStart() : cursorPosition());
    setSelection(start, positionAt(event->pos().x()) - start);
}

void CombLineEdit::inputMethodEvent(QInputMethodEvent* event)
{
    m_composed = event->preeditString();
    QLineEdit::inputMethodEvent(event);
    update();
}

QVariant CombLineEdit::inputMethodQuery(Qt::InputMethodQuery property) const
{
    if (property == Qt::ImCursorRectangle)
        return cursorRect();
    return QLineEdit::inputMethodQuery(property);
}

} // namespace pdf
