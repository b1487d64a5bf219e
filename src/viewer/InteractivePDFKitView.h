// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QObject>
#include <QUrl>

#include <optional>

namespace pdf {
class PDFView;
struct ShownDocument;
} // namespace pdf

namespace quillo {

class DocumentOpener;

/// The bridge between a viewer's state and its page view: it keeps document and zoom of the view in step with
/// the state and reports back what the user does in the view. A file that does not open leaves the view as it
/// is.
class InteractivePDFKitView : public QObject
{
    Q_OBJECT

public:
    /// The view is the viewer's; the bridge becomes its child.
    explicit InteractivePDFKitView(pdf::PDFView* pdfView);

    /// To be called whenever the viewer's state has changed. `zoomLevel` is the scale factor of the view.
    void update(const std::optional<QUrl>& url, double zoomLevel);

Q_SIGNALS:
    /// Zero-based. Comes after the view has settled, never while it changes.
    void currentPageChanged(int page);
    /// The text of a new selection, likewise. A selection that ends does not count.
    void selectedTextChanged(const QString& text);
    /// The scale factor was changed in the view itself, by hand or by fitting.
    void scaleFactorChanged(double factor);
    /// What was last asked for is on the screen, or it is certain that it will not be. Never comes within
    /// update().
    void documentResolved();

private:
    void showDocument(const pdf::ShownDocument& shown);
    bool showsWantedDocument() const;
    void resolveLater();

    pdf::PDFView* const m_pdfView;
    DocumentOpener* const m_opener;
    /// What was asked for last, whether it could be opened or not.
    std::optional<QUrl> m_url;
    double m_zoomLevel = 1.0;
};

} // namespace quillo
