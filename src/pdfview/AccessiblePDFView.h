// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QAccessible>
#include <QAccessibleWidget>

namespace pdf {

class PDFView;
class TextLayer;

/// A page view as assistive technologies see it: a document with the name of its file, whose text is that of
/// the current page. Offsets count the UTF-16 code units of that text, points are those of the screen. While
/// the page is not read it has no text; ViewAnnouncer tells when it has.
class AccessiblePDFView : public QAccessibleWidget, public QAccessibleTextInterface
{
public:
    /// Has views look like this to whoever asks from now on. May be called more than once.
    static void install();

    explicit AccessiblePDFView(PDFView& view);

    QAccessible::State state() const override;
    QString text(QAccessible::Text kind) const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    void selection(int index, int* start, int* end) const override;
    int selectionCount() const override;
    void addSelection(int start, int end) override;
    void removeSelection(int index) override;
    void setSelection(int index, int start, int end) override;

    /// Where the keyboard would go on to select; the beginning where that is not on this page.
    int cursorPosition() const override;
    void setCursorPosition(int position) override;

    QString text(int start, int end) const override;
    int characterCount() const override;
    /// Empty while it is not known where the page is.
    QRect characterRect(int offset) const override;
    /// -1 beside all text.
    int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int start, int end) override;
    QString attributes(int offset, int* start, int* end) const override;

private:
    ~AccessiblePDFView() override = default;

    const TextLayer* pageText() const;
    QString pageDescription() const;

    PDFView& m_view;
};

} // namespace pdf
