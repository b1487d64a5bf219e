// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormFiller.h"
#include "pdfview/PDFView.h"
#include "pdfview/TabStops.h"

#include <algorithm>
#include <utility>

// From field to field with the keyboard.
namespace pdf {

void FormFiller::walk(bool forward)
{
    const FormWidget from = m_editor->field().widget;
    const FormPage* page = knownPage(from.page);
    if (!page) {
        close(true);
        return;
    }
    if (const PDFFormField* next = tabStopAfter(page->fields, from, forward))
        openFromKeyboard(*next);
    else if (close(true))
        walkFromPage(from.page + (forward ? 1 : -1), forward);
}

bool FormFiller::walkIn(bool forward)
{
    if (!m_hasFields || m_view.currentPageIndex() < 0)
        return false;
    walkFromPage(m_view.currentPageIndex(), forward);
    return true;
}

void FormFiller::walkFromPage(int page, bool forward)
{
    const int step = forward ? 1 : -1;
    // Pages that are at hand need no waiting.
    const FormPage* known = knownPage(page);
    while (known && !known->isFillable()) {
        page += step;
        known = knownPage(page);
    }
    if (known)
        return takeFoundPage(*known, forward);
    m_jobs->findPage(
        page, step, [this, forward](const std::optional<FormPage>& found) { takeFoundPage(found, forward); });
}

void FormFiller::takeFoundPage(const std::optional<FormPage>& page, bool forward)
{
    if (!page) {
        Q_EMIT walkedOut(forward);
        return;
    }
    // A copy, since the page may be the one in the map that is about to change.
    const std::vector<PDFFormField> fields = page->fields;
    m_pages[page->page] = *page;
    if (const PDFFormField* stop = firstTabStop(fields, forward))
        openFromKeyboard(*stop);
}

void FormFiller::step(bool forward)
{
    const PDFFormField from = m_editor->field();
    const FormPage* page = knownPage(from.widget.page);
    if (!page)
        return;
    std::vector<const PDFFormField*> group;
    for (const PDFFormField& field : page->fields) {
        if (field.name == from.name && field.kind == from.kind && field.isFillable())
            group.push_back(&field);
    }
    const auto place = std::find_if(
        group.begin(), group.end(), [&](const PDFFormField* field) { return field->widget == from.widget; });
    if (place == group.end() || group.size() < 2)
        return;
    const std::size_t count = group.size();
    const auto index = static_cast<std::size_t>(place - group.begin());
    const bool isOpen = openFromKeyboard(*group[(index + (forward ? 1 : count - 1)) % count]);
    if (isOpen && !m_editor->field().isOn)
        m_editor->click();
}

} // namespace pdf
