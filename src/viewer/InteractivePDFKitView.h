// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QObject>
#include <QTimer>
#include <QUrl>

#include <cstdint>
#include <filesystem>
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

    /// To be called whenever a file is opened, also when it is the one that was opened before: one that could
    /// not be opened is tried anew, one that is shown is read anew if it was replaced on disk, unless that
    /// would lose what was changed in the view.
    void open(const std::optional<QUrl>& url);
    /// The scale factor of the view.
    void setZoomLevel(double zoomLevel);

Q_SIGNALS:
    /// Zero-based. Comes after the view has settled, never while it changes.
    void currentPageChanged(int page);
    /// The text of a new selection, likewise. A selection that ends does not count.
    void selectedTextChanged(const QString& text);
    /// The scale factor was changed in the view itself, by hand or by fitting.
    void scaleFactorChanged(double factor);
    /// What was last opened is on the screen, or will not be, or not soon. Comes for every open() that no
    /// other one follows too early, unless its url is absent; never within open().
    void documentResolved();

private:
    /// Tells one state of a file from another.
    struct FileStamp
    {
        std::uintmax_t size = 0;
        std::filesystem::file_time_type modified;

        static FileStamp of(const QUrl& url);
        bool operator==(const FileStamp&) const = default;
    };

    void showDocument(const pdf::ShownDocument& shown);
    bool showsWantedDocument() const;
    void resolveLater();
    void resolve();

    pdf::PDFView* const m_pdfView;
    DocumentOpener* const m_opener;
    /// What was asked for last, whether it could be opened or not.
    std::optional<QUrl> m_url;
    /// Of that file, when it was opened.
    FileStamp m_stamp;
    /// What is in the view.
    std::optional<QUrl> m_shownUrl;
    FileStamp m_shownStamp;
    bool m_isUnresolved = false;
    /// Counts what was opened.
    quint64 m_turn = 0;
    QTimer m_patience;
    double m_zoomLevel = 1.0;
};

} // namespace quillo
