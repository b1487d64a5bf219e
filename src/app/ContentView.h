// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QPromise>
#include <QUrl>
#include <QWidget>

#include <memory>
#include <optional>

class QHBoxLayout;

namespace quillo {

class AnalyticsService;
class DocumentState;
class InAppToolbar;
class Separator;
class UnderstandSidebar;

/// A document window. It owns the window's document state and opens what arrives through the openPDFDocument
/// notification or is dropped on it.
class ContentView : public QWidget
{
    Q_OBJECT

public:
    /// The service must outlive the window.
    explicit ContentView(AnalyticsService& analyticsService, QWidget* parent = nullptr);

    DocumentState* documentState() const { return m_documentState; }
    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user wants to choose a file.
    void openDocumentRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void openDocument(const QUrl& url);
    void closeDocument();
    void followDocument();
    void setSidebarShown(bool shown);
    /// Extracts the text of the document that was opened last, unless that has begun.
    void extractText();

    AnalyticsService& m_analyticsService;
    DocumentState* const m_documentState;
    InAppToolbar* m_toolbar;
    QHBoxLayout* m_panes;
    /// The viewer while a document is open, else the empty state.
    QWidget* m_mainPane = nullptr;
    Separator* m_sidebarEdge = nullptr;
    /// Null while it is hidden.
    UnderstandSidebar* m_sidebar = nullptr;
    bool m_hasAppeared = false;
    /// The document that was opened last, while its text is still to be extracted.
    std::optional<QUrl> m_unreadUrl;
    /// Ends when the text of the document that was opened last has been extracted.
    std::shared_ptr<QPromise<void>> m_textReading;
};

} // namespace quillo
