// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/DocumentState.h"
#include "pdfview/PDFView.h"
#include "support/PDFWriter.h"
#include "support/RecordedAnalytics.h"
#include "viewer/PDFViewer.h"

#include <gtest/gtest.h>

#include <memory>

class QLineEdit;

namespace quillo {

/// A viewer in a window on a document state of its own.
class ViewerFixture : public testing::Test
{
protected:
    /// Pages of letter size with their number on them.
    QUrl documentOf(int pageCount, const QString& name = QStringLiteral("document.pdf"));
    /// The same, to be opened with the password only.
    QUrl encryptedDocument(const QString& password, const QString& name = QStringLiteral("encrypted.pdf"));
    /// A page with one form field.
    QUrl formDocument(const QString& name = QStringLiteral("form.pdf"));

    /// Opens the window.
    void show();
    /// Hands the file to the viewer and waits until it is on the screen or refused.
    void open(const QUrl& url);
    /// open() of a document with so many pages, in a new window.
    void showDocument(int pageCount);
    /// Clicks at the field of formDocument() until it has an editor; null when none comes.
    QLineEdit* editField();

    pdf::PDFView& view() const;
    /// The text of the label that a screen reader calls by this name.
    QString label(const QString& name) const;

    TestFolder m_folder;
    RecordedAnalytics m_analytics;
    DocumentState m_state;
    std::unique_ptr<PDFViewer> m_viewer;
};

} // namespace quillo
