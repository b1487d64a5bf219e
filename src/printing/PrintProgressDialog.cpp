// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printing/PrintProgressDialog.h"

#include "controls/TextLabel.h"

#include <QDialogButtonBox>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillo {

PrintProgressDialog::PrintProgressDialog(const QString& title, QWidget* parent)
    : QDialog(parent)
    , m_label(new TextLabel(tr("Getting the pages ready…"), TextStyle::body))
    , m_bar(new QProgressBar)
{
    setWindowTitle(tr("Printing"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 24, 24, 16);
    column->setSpacing(12);
    auto* heading = new TextLabel(tr("Printing “%1”").arg(title), TextStyle::headline);
    heading->setWrapping(true);
    column->addWidget(heading);
    column->addWidget(m_label);
    m_bar->setAccessibleName(tr("Progress"));
    m_bar->setMinimumWidth(320);
    // Until it is known how much there is.
    m_bar->setRange(0, 0);
    m_bar->setTextVisible(false);
    column->addWidget(m_bar);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Cancel)->setIcon(QIcon());
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void PrintProgressDialog::showProgress(int sheets, int totalSheets)
{
    m_bar->setRange(0, totalSheets);
    m_bar->setValue(sheets);
    m_label->setText(
        sheets < totalSheets ? tr("Sheet %1 of %2").arg(sheets).arg(totalSheets)
                             : tr("Handing the sheets over…"));
}

} // namespace quillo
