// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/DocumentState.h"
#include "pdf/PDFError.h"
#include "support/RecordedAnalytics.h"
#include "viewer/PDFViewer.h"

#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <variant>

namespace pdf {
class PDFDocument;
class PDFView;
} // namespace pdf

namespace quillo {

/// A window through which one document after the other goes, as in a long working day, and what a user does
/// with them in it. A step that keeps the window busy, or does not end, is a failure of the test.
class DocumentVisit
{
public:
    DocumentVisit();

    pdf::PDFView& view() { return *m_view; }
    const std::shared_ptr<pdf::PDFDocument>& document() const;

    /// True when the file is on the screen, false when it is refused. Nobody knows its password.
    bool open(const QString& path);
    /// From the first screen to the last one, but not more than so many on the way; waits at both ends until
    /// all is drawn.
    void scrollThrough(double scale, int screens);
    /// Searches for a word of the first page and for one that is nowhere.
    void search();
    /// Walks into up to so many form fields and types something; gives how many took the keyboard.
    int typeIntoFields(int most);
    /// Saves with what was typed.
    pdf::Result<std::monostate> save(const QString& path);

private:
    void step(const char* name, const std::function<void()>& work);
    void waitFor(const std::function<bool()>& isDone);
    void activate();
    void finishEditing();
    void waitUntilDrawn();
    int countMatches(const QString& word);

    RecordedAnalytics m_analytics;
    DocumentState m_state;
    PDFViewer m_viewer;
    pdf::PDFView* m_view;
    QTimer m_refusal;
    bool m_isResolved = false;
};

} // namespace quillo
