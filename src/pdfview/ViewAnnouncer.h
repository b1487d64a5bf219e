// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QAccessible>
#include <QObject>
#include <QString>

#include <functional>

namespace pdf {

class PDFView;

/// Tells assistive technologies when a view shows another document, another page or another selection, and
/// when a link gets the keyboard. While none is active it does nothing. Main thread.
class ViewAnnouncer : public QObject, public QAccessible::ActivationObserver
{
    Q_OBJECT

public:
    using Announce = std::function<void(QAccessibleEvent*)>;

    explicit ViewAnnouncer(PDFView& view, Announce announce = QAccessible::updateAccessibility);
    ~ViewAnnouncer() override;

    void accessibilityActiveChanged(bool active) override;

private:
    void announce(QAccessibleEvent&& event) const;
    void announceDocument();
    void announcePage();
    void announceFailure(int page);
    void announceLink();
    void announceText();
    void announceSelection();
    QString pageText() const;

    PDFView& m_view;
    const Announce m_announce;
    bool m_isActive = false;
    /// What the view's text is known to be.
    QString m_text;
};

} // namespace pdf
