// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormNotice.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

namespace pdf {
namespace {

constexpr int edge = 12;
constexpr int widest = 560;

} // namespace

FormNotice::FormNotice(QWidget* parent)
    : QFrame(parent)
{
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 8, 8, 8);
    auto* text =
        new QLabel(tr("This form is made for software that understands XFA, and cannot be filled in here."));
    text->setWordWrap(true);
    row->addWidget(text, 1);
    auto* close = new QPushButton(tr("Close"));
    close->setAccessibleName(tr("Close"));
    close->setFlat(true);
    row->addWidget(close, 0, Qt::AlignTop);
    connect(close, &QPushButton::clicked, this, &QObject::deleteLater);
    setAccessibleName(text->text());
}

void FormNotice::place()
{
    const int width = std::min(widest, parentWidget()->width() - 2 * edge);
    resize(width, std::max(heightForWidth(width), sizeHint().height()));
    move((parentWidget()->width() - width) / 2, edge);
}

} // namespace pdf
