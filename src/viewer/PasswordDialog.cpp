// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/PasswordDialog.h"

#include "controls/TextLabel.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillo {

PasswordDialog::PasswordDialog(const QString& fileName, bool isRepeated, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Password Required"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 24, 24, 16);
    column->setSpacing(12);

    auto* heading = new TextLabel(tr("“%1” is protected.").arg(fileName), TextStyle::headline);
    heading->setWrapping(true);
    column->addWidget(heading);
    auto* question = new TextLabel(tr("Enter its password to open it."), TextStyle::body);
    column->addWidget(question);

    m_field = new QLineEdit;
    m_field->setEchoMode(QLineEdit::Password);
    m_field->setAccessibleName(tr("Password"));
    m_field->setMinimumWidth(280);
    column->addWidget(m_field);

    if (isRepeated) {
        column->addWidget(new TextLabel(
            tr("That password is not the right one. Try again."), TextStyle::subheadline, ThemeColor::red));
    }

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    // The style's picture of a cross would outshine the button that most people want.
    buttons->button(QDialogButtonBox::Cancel)->setIcon(QIcon());
    auto* open = buttons->addButton(tr("Open"), QDialogButtonBox::AcceptRole);
    column->addSpacing(4);
    column->addWidget(buttons);
    // Only a button that is already part of the dialog can become its default.
    open->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_field->setFocus();
}

QString PasswordDialog::password() const
{
    return m_field->text();
}

} // namespace quillo
