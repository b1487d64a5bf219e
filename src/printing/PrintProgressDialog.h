// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QDialog>

class QProgressBar;

namespace quillo {

class TextLabel;

/// Shows how far a print is and lets the user cancel it, which is what rejecting it means.
class PrintProgressDialog : public QDialog
{
    Q_OBJECT

public:
    PrintProgressDialog(const QString& title, QWidget* parent);

    void showProgress(int sheets, int totalSheets);

private:
    TextLabel* m_label;
    QProgressBar* m_bar;
};

} // namespace quillo
