// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/ActualText.h"

#include "pdf/CookieScope.h"
#include "pdf/Engine.h"
#include "pdf/MuPDFVersion.h"

// Where MuPDF is called, nothing is made that would have to be destroyed: its errors skip destructors.
namespace pdf {
namespace {

// The operators get the processor and nothing else, and the processor has no room for data of ours.
thread_local ActualText* current = nullptr;

/// Hands the device what the processor has gathered so far, as every change of the graphics state does. The
/// rendering intent means nothing to text.
void deliverText(fz_context* ctx, pdf_processor* processor)
{
    if (current->operators.op_ri)
        current->operators.op_ri(ctx, processor, "RelativeColorimetric");
}

void beginReplaced(fz_context* ctx, pdf_processor* processor, pdf_obj* replacement)
{
    deliverText(ctx, processor);
    current->replacement = pdf_keep_obj(ctx, replacement);
    current->replacedDepth = current->depth;
    current->firstGlyph = current->collector->glyphs().size();
}

void endReplaced(fz_context* ctx, pdf_processor* processor)
{
    deliverText(ctx, processor);
    const char* text = pdf_to_text_string(ctx, current->replacement);
    bool isReplaced = false;
    engine::translated(ctx, [&] { isReplaced = current->collector->replaceFrom(current->firstGlyph, text); });
    pdf_drop_obj(ctx, current->replacement);
    current->replacement = nullptr;
    current->replacedDepth = 0;
    if (!isReplaced) {
        CookieScope::current()->stop();
        fz_throw(ctx, FZ_ERROR_ABORT, "the page has too much text");
    }
}

void endContent(fz_context* ctx, pdf_processor* processor)
{
    if (current->depth == current->replacedDepth && current->replacedDepth > 0)
        endReplaced(ctx, processor);
    --current->depth;
}

void beginMarked(fz_context* ctx, pdf_processor* processor, const char* tag)
{
    ++current->depth;
    if (current->operators.op_BMC)
        current->operators.op_BMC(ctx, processor, tag);
}

void beginMarkedWithProperties(
    fz_context* ctx, pdf_processor* processor, const char* tag, pdf_obj* raw, pdf_obj* cooked)
{
    ++current->depth;
    pdf_obj* text = pdf_dict_get(ctx, cooked, PDF_NAME(ActualText));
    if (current->replacedDepth == 0 && pdf_is_string(ctx, text))
        beginReplaced(ctx, processor, text);
    if (current->operators.op_BDC)
        current->operators.op_BDC(ctx, processor, tag, raw, cooked);
}

void endMarked(fz_context* ctx, pdf_processor* processor)
{
    if (current->operators.op_EMC)
        current->operators.op_EMC(ctx, processor);
    if (current->depth > current->outerDepth)
        endContent(ctx, processor);
}

/// What a form leaves open ends with it, and it cannot close what is open around it.
void runForm(fz_context* ctx, pdf_processor* processor, const char* name, pdf_obj* form, pdf_obj* resources)
{
    const int outerDepth = current->outerDepth;
    current->outerDepth = current->depth;
    current->operators.op_Do_form(ctx, processor, name, form, resources);
    while (current->depth > current->outerDepth)
        endContent(ctx, processor);
    current->outerDepth = outerDepth;
}

} // namespace

void ActualText::attach(pdf_processor* processor, GlyphCollector& glyphs)
{
    collector = &glyphs;
    operators = *processor;
    processor->op_BMC = beginMarked;
    processor->op_BDC = beginMarkedWithProperties;
    processor->op_EMC = endMarked;
    processor->op_Do_form = runForm;
    current = this;
}

void ActualText::detach(fz_context* ctx)
{
    if (current == this)
        current = nullptr;
    pdf_drop_obj(ctx, replacement);
    replacement = nullptr;
}

} // namespace pdf
