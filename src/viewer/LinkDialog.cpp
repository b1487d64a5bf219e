// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/LinkDialog.h"

#include "controls/TextLabel.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillo {
namespace {

constexpr int textWidth = 420;

// What is shown of a long address: enough to see what it is, and a dialog that fits on the screen.
constexpr qsizetype longestAddress = 600;
constexpr qsizetype longestHost = 60;

bool isLetter(const QUrl& address)
{
    return address.scheme() == QLatin1String("mailto");
}

/// In ASCII, so that no letter can pass for another. Of a long host its end says whose it is.
QString host(const QUrl& address)
{
    const QString host = address.host(QUrl::FullyEncoded);
    return host.size() <= longestHost ? host : QChar(u'\u2026') + host.right(longestHost - 1);
}

QString question(const QUrl& address)
{
    if (isLetter(address)) {
        const QString receiver = address.path(QUrl::FullyEncoded).left(longestHost);
        return receiver.isEmpty() ? LinkDialog::tr("Write an e-mail?")
                                  : LinkDialog::tr("Write an e-mail to “%1”?").arg(receiver);
    }
    return LinkDialog::tr("Open a page of “%1” in the browser?").arg(host(address));
}

/// With places where lines can be broken, which an address has none of.
QString breakable(const QString& address)
{
    constexpr QChar breakHere(0x200B);
    QString text;
    for (const QChar c : address) {
        text += c;
        text += breakHere;
    }
    return text;
}

QString shownAddress(const QUrl& address)
{
    const QString text = address.toString(QUrl::FullyEncoded);
    return breakable(text.size() <= longestAddress ? text : text.left(longestAddress - 1) + QChar(u'\u2026'));
}

} // namespace

LinkDialog::LinkDialog(const QUrl& address, QWidget* parent)
    : QDialog(parent)
    , m_address(address)
{
    setWindowTitle(tr("Open Link"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 24, 24, 16);
    column->setSpacing(12);

    auto* heading = new TextLabel(question(address), TextStyle::headline);
    heading->setWrapping(true);
    heading->setFixedWidth(textWidth);
    column->addWidget(heading);
    auto* whole = new TextLabel(shownAddress(address), TextStyle::body, ThemeColor::secondaryText);
    whole->setWrapping(true);
    whole->setFixedWidth(textWidth);
    // Without the places to break at.
    whole->setAccessibleName(address.toString(QUrl::FullyEncoded));
    column->addWidget(whole);

    auto* buttons = new QDialogButtonBox;
    auto* copy = buttons->addButton(tr("Copy Address"), QDialogButtonBox::ActionRole);
    buttons->addButton(QDialogButtonBox::Cancel)->setIcon(QIcon());
    auto* open = buttons->addButton(
        isLetter(address) ? tr("Write E-mail") : tr("Open in Browser"), QDialogButtonBox::AcceptRole);
    column->addSpacing(4);
    column->addWidget(buttons);
    // Only a button that is already part of the dialog can become its default.
    open->setDefault(true);
    open->setFocus();
    connect(copy, &QPushButton::clicked, this, [this] {
        QApplication::clipboard()->setText(m_address.toString(QUrl::FullyEncoded));
        reject();
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &LinkDialog::openAddress);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void LinkDialog::openAddress()
{
    QWidget* window = parentWidget();
    accept();
    if (QDesktopServices::openUrl(m_address))
        return;
    auto* message = new QMessageBox(
        QMessageBox::Warning, tr("Open Link"),
        isLetter(m_address) ? tr("No program was found that writes e-mails.")
                            : tr("No browser was found that opens the page."),
        QMessageBox::Ok, window);
    message->setAttribute(Qt::WA_DeleteOnClose);
    message->open();
}

} // namespace quillo
