// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormFiller.h"
#include "pdfview/PDFView.h"

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
    const auto isFrom = [&](const PDFFormField& field) { return field.widget == from; };
    const auto isFillable = [](const PDFFormField& field) { return field.isFillable(); };
    const PDFFormField* next = nullptr;
    if (forward) {
        auto place = std::find_if(page->fields.begin(), page->fields.end(), isFrom);
        if (place != page->fields.end())
            place = std::find_if(place + 1, page->fields.end(), isFillable);
        next = place == page->fields.end() ? nullptr : &*place;
    } else {
        auto place = std::find_if(page->fields.rbegin(), page->fields.rend(), isFrom);
        if (place != page->fields.rend())
            place = std::find_if(place + 1, page->fields.rend(), isFillable);
        next = place == page->fields.rend() ? nullptr : &*place;
    }
    if (next)
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
    const auto isFillable = [](const PDFFormField& field) { return field.isFillable(); };
    const auto first = std::find_if(fields.begin(), fields.end(), isFillable);
    const auto last = std::find_if(fields.rbegin(), fields.rend(), isFillable);
    openFromKeyboard(forward ? *first : *last);
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
