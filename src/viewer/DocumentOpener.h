// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "viewer/DocumentOpening.h"

#include <QPointer>
#include <QWidget>

#include <optional>

namespace quillo {

class PasswordDialog;

/// Opens files for a view, one at a time: a newer wish replaces an older one that is not done. An encrypted
/// file asks for its password, again after a wrong one, until the user gives up. Nothing here waits.
class DocumentOpener : public QObject
{
    Q_OBJECT

public:
    /// Dialogs belong to the widget's window and come when that is on the screen.
    explicit DocumentOpener(QWidget* dialogParent);
    ~DocumentOpener() override;

    /// `scale` as for DocumentOpening::begin().
    void open(const QString& path, double scale);
    /// Forgets what is being opened.
    void cancel();

Q_SIGNALS:
    void opened(const pdf::ShownDocument& shown);
    /// The file cannot be opened, or the user did not give its password.
    void failed();

private:
    void begin(const std::optional<QString>& password);
    void finish(const pdf::Result<pdf::ShownDocument>& result, const std::optional<QString>& password);
    void askForPassword(bool isRepeated);
    void showDialog(bool isRepeated);

    QWidget* const m_dialogParent;
    QString m_path;
    double m_scale = 1.0;
    std::optional<DocumentOpening> m_opening;
    /// Tells the results of replaced openings from those of the current one.
    quint64 m_turn = 0;
    QPointer<PasswordDialog> m_dialog;
};

} // namespace quillo
