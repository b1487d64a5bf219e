// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormNotice.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

namespace pdf {
namespace {

constexpr int edge = 12;
constexpr int widest = 560;

} // namespace

FormNotice::FormNotice(const QString& text, QWidget* parent)
    : QFrame(parent)
    , m_text(new QLabel)
{
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 8, 8, 8);
    m_text->setWordWrap(true);
    m_text->setTextFormat(Qt::PlainText);
    row->addWidget(m_text, 1);
    auto* close = new QPushButton(tr("Close"));
    close->setAccessibleName(tr("Close"));
    close->setFlat(true);
    row->addWidget(close, 0, Qt::AlignTop);
    connect(close, &QPushButton::clicked, this, &QObject::deleteLater);
    setText(text);
}

QString FormNotice::text() const
{
    return m_text->text();
}

void FormNotice::setText(const QString& text)
{
    m_text->setText(text);
    setAccessibleName(text);
    delete m_offer.data();
}

void FormNotice::offerText(const QString& text)
{
    m_offer = new QPushButton(tr("Copy Text"));
    m_offer->setAccessibleName(tr("Copy Text"));
    m_offer->setFlat(true);
    static_cast<QHBoxLayout*>(layout())->insertWidget(1, m_offer, 0, Qt::AlignTop);
    m_offer->show();
    connect(m_offer, &QPushButton::clicked, this, [text] { QGuiApplication::clipboard()->setText(text); });
}

void FormNotice::place(const QRect& leftFree)
{
    const int width = std::min(widest, parentWidget()->width() - 2 * edge);
    resize(width, std::max(heightForWidth(width), sizeHint().height()));
    move((parentWidget()->width() - width) / 2, edge);
    if (geometry().intersects(leftFree))
        move(x(), parentWidget()->height() - height() - edge);
}

void FormNotice::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

} // namespace pdf
