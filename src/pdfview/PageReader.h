// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/PDFLink.h"
#include "pdfview/TextShift.h"

#include <QObject>
#include <QTimer>

#include <map>
#include <memory>
#include <set>
#include <vector>

namespace pdf {

class JobQueue;
class PDFView;
class TextLayer;

/// What the mouse can hit on a page besides its form fields.
struct PageMatter
{
    /// Null where the page's text cannot be read.
    std::shared_ptr<const TextLayer> text;
    /// The one that lies on top last.
    std::vector<PDFLink> links;
};

/// Keeps the text and the links of the pages around the visible ones at hand. They are read on another thread
/// after the pages have come to rest, so that neither the mouse nor the drawing of pages waits for them, and
/// given up when their page is scrolled away. After a form field or an annotation has changed, its page is
/// read anew; what was known stays at hand until then. Main thread.
class PageReader : public QObject
{
    Q_OBJECT

public:
    explicit PageReader(PDFView& view);
    ~PageReader() override;

    /// Null while the page is not read.
    const PageMatter* page(int page) const;
    /// The page's text; null while it is not read and where it cannot be.
    const TextLayer* text(int page) const;

    /// These pages are read now rather than when everything is at rest, and are not given up until their
    /// holder asks for others here. The pointer only tells who that is.
    void hold(const void* holder, std::set<int> pages);

Q_SIGNALS:
    /// A page that was read before has another text now; pageRead() follows.
    void textChanged(int page, const pdf::TextShift& shift);
    void pageRead(int page);

private:
    void startDocument();
    void follow();
    void requestPages();
    void request(int page);
    void outdate(int page);
    void forgetDistantPages();
    bool isWanted(int page) const;
    void take(int page, const PageMatter& matter);

    PDFView& m_view;
    std::unique_ptr<JobQueue> m_jobs;
    std::map<int, PageMatter> m_pages;
    std::map<int, Cancellation> m_requested;
    /// Pages that are at hand and have to be read anew.
    std::set<int> m_outdated;
    std::map<const void*, std::set<int>> m_held;
    QTimer m_rest;
};

} // namespace pdf
