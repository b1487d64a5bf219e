// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/FieldValue.h"
#include "pdf/PDFFormField.h"
#include "pdfview/JobQueue.h"

#include <QTransform>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace pdf {

class PDFDocument;

/// The form fields of a page, in the order of the Tab key.
struct FormPage
{
    int page = -1;
    QTransform pageToDisplay;
    std::vector<PDFFormField> fields;

    bool isFillable() const;
};

/// Reads and fills in the form of a document on a thread of its own, one job after another, so that the view
/// never waits for the document. Everything is handed back on the thread that this object lives on, through
/// functions that are dropped with it; values that are on their way are set all the same.
class FormJobs
{
public:
    struct FormKind
    {
        bool hasFields = false;
        bool isXFAOnly = false;
    };
    /// The pages that look different now, or why the value was refused.
    using Outcome = Result<std::vector<int>>;

    explicit FormJobs(std::shared_ptr<PDFDocument> document);
    /// Waits for nothing.
    ~FormJobs();
    FormJobs(const FormJobs&) = delete;
    FormJobs& operator=(const FormJobs&) = delete;

    void readKind(std::function<void(FormKind)> receive);
    void readPage(int page, std::function<void(FormPage)> receive);
    /// Looks for a page with something to fill in, from the given one on upwards or downwards. A new search
    /// ends the one before, which then receives nothing.
    void findPage(int from, int step, std::function<void(std::optional<FormPage>)> receive);
    void setValue(const FormWidget& widget, FormValue value, std::function<void(Outcome)> receive);
    /// Is called when all that was asked for before is done.
    void afterAll(std::function<void()> receive);

private:
    const std::shared_ptr<PDFDocument> m_document;
    /// The number of the current search.
    const std::shared_ptr<std::atomic<int>> m_search;
    JobQueue m_queue;
};

} // namespace pdf
