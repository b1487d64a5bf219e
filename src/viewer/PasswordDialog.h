// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QDialog>

class QLineEdit;

namespace quillo {

class TextLabel;

/// Asks for the password of an encrypted file.
class PasswordDialog : public QDialog
{
    Q_OBJECT

public:
    /// `isRepeated` says that the one before was wrong.
    PasswordDialog(const QString& fileName, bool isRepeated, QWidget* parent);

    QString password() const;

private:
    QLineEdit* m_field;
};

} // namespace quillo
