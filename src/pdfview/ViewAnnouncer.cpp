// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/ViewAnnouncer.h"

#include "pdf/TextLayer.h"
#include "pdfview/LinkFollower.h"
#include "pdfview/PDFView.h"
#include "pdfview/PageReader.h"
#include "pdfview/TextSelector.h"

#include <algorithm>
#include <utility>

namespace pdf {

ViewAnnouncer::ViewAnnouncer(PDFView& view, Announce announce)
    : m_view(view)
    , m_announce(std::move(announce))
    , m_isActive(QAccessible::isActive())
{
    QAccessible::installActivationObserver(this);
    connect(&view, &PDFView::documentChanged, this, &ViewAnnouncer::announceDocument);
    connect(&view, &PDFView::pageChanged, this, &ViewAnnouncer::announcePage);
    connect(&view, &PDFView::pageFailed, this, &ViewAnnouncer::announceFailure);
    connect(&view.pageReader(), &PageReader::pageRead, this, &ViewAnnouncer::announceText);
    connect(&view.linkFollower(), &LinkFollower::keyboardMoved, this, &ViewAnnouncer::announceLink);
    connect(&view.textSelector(), &TextSelector::rangeChanged, this, &ViewAnnouncer::announceSelection);
}

ViewAnnouncer::~ViewAnnouncer()
{
    QAccessible::removeActivationObserver(this);
}

void ViewAnnouncer::accessibilityActiveChanged(bool active)
{
    m_isActive = active;
    m_text = active ? pageText() : QString();
}

void ViewAnnouncer::announce(QAccessibleEvent&& event) const
{
    m_announce(&event);
}

void ViewAnnouncer::announceDocument()
{
    if (!m_isActive)
        return;
    announce(QAccessibleEvent(&m_view, QAccessible::NameChanged));
    announceText();
}

void ViewAnnouncer::announcePage()
{
    if (!m_isActive)
        return;
    announce(QAccessibleEvent(&m_view, QAccessible::DescriptionChanged));
    announceText();
}

void ViewAnnouncer::announceFailure(int page)
{
    if (m_isActive && page == m_view.currentPageIndex())
        announce(QAccessibleEvent(&m_view, QAccessible::DescriptionChanged));
}

void ViewAnnouncer::announceLink()
{
    if (m_isActive)
        announce(QAccessibleEvent(&m_view, QAccessible::DescriptionChanged));
}

void ViewAnnouncer::announceText()
{
    if (!m_isActive)
        return;
    const QString text = pageText();
    const QString before = std::exchange(m_text, text);
    if (text != before)
        announce(QAccessibleTextUpdateEvent(&m_view, 0, before, text));
}

void ViewAnnouncer::announceSelection()
{
    if (!m_isActive)
        return;
    const int page = m_view.currentPageIndex();
    const TextLayer* text = m_view.pageReader().text(page);
    if (!text)
        return;
    TextRange range = text->clipped(m_view.textSelector().rangeOn(page));
    const auto end = m_view.textSelector().movingEnd();
    const bool isEndHere = end && end->page == page;
    const qsizetype cursor = isEndHere ? std::min(end->index, text->string().size()) : range.end();
    if (range.length == 0)
        range.location = cursor;
    QAccessibleTextSelectionEvent event(
        &m_view, static_cast<int>(range.location), static_cast<int>(range.end()));
    event.setCursorPosition(static_cast<int>(cursor));
    m_announce(&event);
}

QString ViewAnnouncer::pageText() const
{
    const TextLayer* text = m_view.pageReader().text(m_view.currentPageIndex());
    return text ? text->string() : QString();
}

} // namespace pdf
