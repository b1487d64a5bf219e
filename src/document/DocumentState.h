// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/PageText.h"
#include "insight/DocumentInsight.h"

#include <QMutex>
#include <QObject>
#include <QString>
#include <QUrl>

#include <cstdint>
#include <memory>
#include <optional>

namespace quillo {

/// The one record of the document that a window has open, shared by all views of that window. It belongs to
/// the main thread: every write happens there, and so does every read but that of the page texts, which
/// analysers take from their own threads. It only holds; loading, recognising and analysing set its fields.
///
/// Each assignment announces itself twice: willChange() before the new value is stored and didChange() after.
/// An assignment of an equal value is an assignment all the same.
class DocumentState : public QObject
{
    Q_OBJECT

public:
    enum class Field {
        url,
        pageTexts,
        currentPage,
        totalPages,
        insight,
        isProcessing,
        selectedText,
        hasOCRData,
    };
    Q_ENUM(Field)

    explicit DocumentState(QObject* parent = nullptr);

    /// The open file; absent while no document is open.
    const std::optional<QUrl>& url() const { return m_url; }
    void setUrl(std::optional<QUrl> url);

    /// The page texts in page order: one whole array, never edited in place. Safe from any thread.
    std::shared_ptr<const PageTexts> pageTexts() const;
    void setPageTexts(PageTexts pageTexts);
    /// Shares the array instead of copying it; must not be null.
    void setPageTexts(std::shared_ptr<const PageTexts> pageTexts);

    /// Zero-based.
    std::int64_t currentPage() const { return m_currentPage; }
    void setCurrentPage(std::int64_t page);

    std::int64_t totalPages() const { return m_totalPages; }
    void setTotalPages(std::int64_t count);

    /// The latest analysis result.
    const std::optional<DocumentInsight>& insight() const { return m_insight; }
    void setInsight(std::optional<DocumentInsight> insight);

    /// True while an analysis or recognition runs.
    bool isProcessing() const { return m_isProcessing; }
    void setIsProcessing(bool processing);

    const QString& selectedText() const { return m_selectedText; }
    void setSelectedText(const QString& text);

    /// True once the page texts came from text recognition.
    bool hasOCRData() const { return m_hasOCRData; }
    void setHasOCRData(bool recognised);

Q_SIGNALS:
    void willChange(quillo::DocumentState::Field field);
    void didChange(quillo::DocumentState::Field field);

private:
    template <typename Store>
    void publish(Field field, Store&& store);

    std::optional<QUrl> m_url;
    mutable QMutex m_pageTextsMutex;
    std::shared_ptr<const PageTexts> m_pageTexts;
    std::int64_t m_currentPage = 0;
    std::int64_t m_totalPages = 0;
    std::optional<DocumentInsight> m_insight;
    bool m_isProcessing = false;
    QString m_selectedText;
    bool m_hasOCRData = false;
};

} // namespace quillo
