// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/DocumentOpener.h"

#include "document/DocumentPasswords.h"
#include "pdf/FileName.h"
#include "viewer/PasswordDialog.h"

namespace quillo {

DocumentOpener::DocumentOpener(QWidget* dialogParent)
    : QObject(dialogParent)
    , m_dialogParent(dialogParent)
{}

DocumentOpener::~DocumentOpener()
{
    if (m_opening)
        m_opening->cancellation.cancel();
}

void DocumentOpener::open(const QString& path, double scale)
{
    cancel();
    m_path = path;
    m_scale = scale;
    begin(std::nullopt);
}

void DocumentOpener::cancel()
{
    ++m_turn;
    if (m_opening)
        m_opening->cancellation.cancel();
    m_opening.reset();
    if (m_dialog) {
        m_dialog->disconnect(this);
        m_dialog->deleteLater();
    }
}

void DocumentOpener::begin(const std::optional<QString>& password)
{
    m_opening = DocumentOpening::begin(m_path, m_scale, password);
    // A future that is done calls back at once, and finish() lets go of the opening.
    auto result = m_opening->result;
    result.then(this, [this, turn = m_turn, password](const pdf::Result<pdf::ShownDocument>& shown) {
        if (turn == m_turn)
            finish(shown, password);
    });
}

void DocumentOpener::finish(
    const pdf::Result<pdf::ShownDocument>& result, const std::optional<QString>& password)
{
    m_opening.reset();
    if (result) {
        if (password)
            DocumentPasswords::shared().remember(m_path, *password);
        Q_EMIT opened(*result);
    } else if (result.error().code == pdf::PDFError::Code::passwordRequired) {
        askForPassword(password.has_value());
    } else {
        Q_EMIT failed();
    }
}

void DocumentOpener::askForPassword(bool isRepeated)
{
    const QString name = pdf::printableFileName(pdf::fileURL(m_path));
    m_dialog = new PasswordDialog(name, isRepeated, m_dialogParent->window());
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_dialog, &QDialog::accepted, this, [this] { begin(m_dialog->password()); });
    connect(m_dialog, &QDialog::rejected, this, &DocumentOpener::failed);
    m_dialog->open();
}

} // namespace quillo
