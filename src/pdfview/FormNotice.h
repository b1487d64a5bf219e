// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QFrame>
#include <QPointer>

class QLabel;
class QPushButton;

namespace pdf {

/// A line above the pages that says why a form cannot be filled in or a value was not taken, until the user
/// closes it and with that deletes it. Screen readers are told when it appears.
class FormNotice : public QFrame
{
    Q_OBJECT

public:
    FormNotice(const QString& text, QWidget* parent);

    QString text() const;
    /// Takes back what was offered with the text before.
    void setText(const QString& text);
    /// Adds a button that puts this on the clipboard.
    void offerText(const QString& text);

    /// Puts it at the upper edge of its parent, or at the lower one where it would cover the rectangle, which
    /// is in coordinates of the parent.
    void place(const QRect& leftFree = {});

protected:
    void showEvent(QShowEvent* event) override;

private:
    QLabel* m_text;
    QPointer<QPushButton> m_offer;
};

} // namespace pdf
