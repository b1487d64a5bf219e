// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QUrl>

namespace quillo {

/// Shows where a link of a document leads, and hands it to the desktop's browser or mail program when the
/// user agrees.
class LinkDialog : public QDialog
{
    Q_OBJECT

public:
    /// An address of the web (http, https) or of somebody's mail (mailto).
    LinkDialog(const QUrl& address, QWidget* parent);

private:
    void openAddress();

    const QUrl m_address;
};

} // namespace quillo
