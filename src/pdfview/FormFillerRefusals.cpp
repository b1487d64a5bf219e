// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormFiller.h"
#include "pdfview/FormNotice.h"
#include "pdfview/FormRefusal.h"
#include "pdfview/PDFView.h"

// What becomes of a value that is not taken.
namespace pdf {

void FormFiller::refuse(const PDFFormField& before, const FormValue& value, const PDFError& error)
{
    const bool isOpen = m_editor && m_editor->field().widget == before.widget;
    const QString reason = refusalText(before, value, error);
    const bool isButton = before.kind == FormFieldKind::checkBox || before.kind == FormFieldKind::radioButton;
    if (isButton) {
        if (isOpen) {
            m_editor->setField(before);
            m_editor->revert();
        }
    } else if (isOpen) {
        m_editor->refuse(before, reason);
    } else {
        std::erase_if(m_refusals, [&](const Refusal& old) { return old.field.widget == before.widget; });
        m_refusals.push_back({before, value, reason});
        openRefused();
    }
    showNotice(reason);
    m_view.viewport()->update();
}

void FormFiller::openRefused()
{
    if (m_editor || m_refusals.empty())
        return;
    const int page = m_refusals.front().field.widget.page;
    if (!knownPage(page)) {
        // It goes on when the fields of the page are there.
        m_view.goToPage(page);
        return;
    }
    const Refusal refusal = m_refusals.front();
    m_refusals.erase(m_refusals.begin());
    if (!open(refusal.field))
        return;
    reveal(refusal.field);
    m_editor->enterValue(refusal.value);
    m_editor->refuse(refusal.field, refusal.reason);
    showNotice(refusal.reason);
}

void FormFiller::endRefusal()
{
    if (m_editor->isRefused() && m_notice) {
        // It may be in the middle of a click.
        m_notice->hide();
        m_notice->deleteLater();
        m_notice = nullptr;
    }
    m_editor->endRefusal();
}

std::optional<FormFiller::Refusal> FormFiller::refusedLast() const
{
    if (m_editor && m_editor->isRefused() && m_editor->isChanged())
        return Refusal{m_editor->field(), m_editor->value(), {}};
    return m_refusals.empty() ? std::nullopt : std::optional(m_refusals.back());
}

void FormFiller::offerLeft(const Refusal& refusal)
{
    const PDFFormField& field = refusal.field;
    showNotice(tr("The field “%1” has not taken what you entered, and its document is no longer open.")
                   .arg(field.alternateName.isEmpty() ? field.name : field.alternateName));
    if (const auto* text = std::get_if<QString>(&refusal.value))
        m_notice->offerText(*text);
    placeNotice();
}

void FormFiller::showNotice(const QString& text)
{
    // Made only now, because its first text loads a font, and hardly any document needs it.
    if (!m_notice)
        m_notice = new FormNotice(text, m_view.viewport());
    m_notice->setText(text);
    placeNotice();
    m_notice->show();
    m_notice->raise();
}

void FormFiller::placeNotice()
{
    if (m_notice)
        m_notice->place(m_editor ? m_editor->widget()->geometry() : QRect());
}

} // namespace pdf
