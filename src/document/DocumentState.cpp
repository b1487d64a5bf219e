// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/DocumentState.h"

#include <QMutexLocker>
#include <QThread>

#include <utility>

namespace quillo {

DocumentState::DocumentState(QObject* parent)
    : QObject(parent)
    , m_pageTexts(std::make_shared<const PageTexts>())
{}

template <typename Store>
void DocumentState::publish(Field field, Store&& store)
{
    Q_ASSERT(QThread::currentThread() == thread());
    Q_EMIT willChange(field);
    store();
    Q_EMIT didChange(field);
}

void DocumentState::setUrl(std::optional<QUrl> url)
{
    publish(Field::url, [&] { m_url = std::move(url); });
}

std::shared_ptr<const PageTexts> DocumentState::pageTexts() const
{
    const QMutexLocker locker(&m_pageTextsMutex);
    return m_pageTexts;
}

void DocumentState::setPageTexts(PageTexts pageTexts)
{
    setPageTexts(std::make_shared<const PageTexts>(std::move(pageTexts)));
}

void DocumentState::setPageTexts(std::shared_ptr<const PageTexts> pageTexts)
{
    Q_ASSERT(pageTexts);
    publish(Field::pageTexts, [&] {
        const QMutexLocker locker(&m_pageTextsMutex);
        // The old array leaves with the parameter, after the lock is gone.
        m_pageTexts.swap(pageTexts);
    });
}

void DocumentState::setCurrentPage(std::int64_t page)
{
    publish(Field::currentPage, [&] { m_currentPage = page; });
}

void DocumentState::setTotalPages(std::int64_t count)
{
    publish(Field::totalPages, [&] { m_totalPages = count; });
}

void DocumentState::setInsight(std::optional<DocumentInsight> insight)
{
    publish(Field::insight, [&] { m_insight = std::move(insight); });
}

void DocumentState::setIsProcessing(bool processing)
{
    publish(Field::isProcessing, [&] { m_isProcessing = processing; });
}

void DocumentState::setSelectedText(const QString& text)
{
    publish(Field::selectedText, [&] { m_selectedText = text; });
}

void DocumentState::setHasOCRData(bool recognised)
{
    publish(Field::hasOCRData, [&] { m_hasOCRData = recognised; });
}

} // namespace quillo
