// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormJobs.h"

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"

#include <algorithm>
#include <utility>

namespace pdf {
namespace {

FormPage readFormPage(PDFDocument& document, int index)
{
    FormPage result;
    result.page = index;
    const auto page = document.page(index);
    if (!page)
        return result;
    result.pageToDisplay = page->pageToDisplay();
    if (auto fields = page->formFields())
        result.fields = *std::move(fields);
    return result;
}

} // namespace

bool FormPage::isFillable() const
{
    return std::any_of(
        fields.begin(), fields.end(), [](const PDFFormField& field) { return field.isFillable(); });
}

FormJobs::FormJobs(std::shared_ptr<PDFDocument> document)
    : m_document(std::move(document))
    , m_search(std::make_shared<std::atomic<int>>(0))
{}

FormJobs::~FormJobs()
{
    ++*m_search;
}

void FormJobs::readKind(std::function<void(FormKind)> receive)
{
    m_queue.add(
        [document = m_document] {
            return FormKind{document->hasForm(), document->isXFAOnly()};
        },
        std::move(receive));
}

void FormJobs::readPage(int page, std::function<void(FormPage)> receive)
{
    m_queue.add([document = m_document, page] { return readFormPage(*document, page); }, std::move(receive));
}

void FormJobs::findPage(int from, int step, std::function<void(std::optional<FormPage>)> receive)
{
    const int number = ++*m_search;
    const auto isCurrent = [search = m_search, number] { return *search == number; };
    m_queue.add(
        [document = m_document, from, step, isCurrent] {
            const int count = document->pageCount();
            std::optional<FormPage> result;
            for (int page = from; page >= 0 && page < count && isCurrent() && !result; page += step) {
                FormPage read = readFormPage(*document, page);
                if (read.isFillable())
                    result = std::move(read);
            }
            return result;
        },
        [isCurrent, receive = std::move(receive)](const std::optional<FormPage>& result) {
            if (isCurrent())
                receive(result);
        });
}

void FormJobs::setValue(const FormWidget& widget, FormValue value, std::function<void(Outcome)> receive)
{
    m_queue.add(
        [document = m_document, widget, value = std::move(value)] {
            return document->setFormValue(widget, value);
        },
        std::move(receive));
}

void FormJobs::afterAll(std::function<void()> receive)
{
    m_queue.add([] { return true; }, [receive = std::move(receive)](bool) { receive(); });
}

} // namespace pdf
