// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "app/ContentView.h"
#include "support/PDFWriter.h"
#include "support/RecordedAnalytics.h"

#include <gtest/gtest.h>

#include <memory>

namespace quillo {

class DocumentState;

/// A whole document window, used as a person would.
class WindowFixture : public testing::Test
{
protected:
    /// Opens the window and waits until it is furnished.
    void show();
    /// Posts the notification that opens the file.
    static void post(const QVariant& object);
    /// Pages of letter size with their number on them.
    QUrl documentOf(int pageCount, const QString& name = QStringLiteral("document.pdf")) const;
    static QUrl sample(const QString& name);

    DocumentState& state() const { return *m_window->documentState(); }
    bool hasText() const;
    /// The text of the label that a screen reader calls by this name.
    QString label(const QString& name) const;
    bool labelBecomes(const QString& name, const QString& text) const;

    TestFolder m_folder;
    RecordedAnalytics m_analytics;
    std::unique_ptr<ContentView> m_window;
};

} // namespace quillo
