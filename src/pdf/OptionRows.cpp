// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/OptionRows.h"

#include "pdf/Engine.h"
#include "pdf/FieldLayout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <iterator>

// Where MuPDF is called, nothing is made that would have to be destroyed: its errors skip destructors.
namespace pdf::fields {
namespace {

// What is looked at of one appearance; a list shows far less.
constexpr std::size_t mostBytes = std::size_t{16} << 10;
constexpr std::size_t mostRows = 256;
constexpr std::size_t mostFills = 64;
constexpr std::size_t mostStates = 32;
constexpr int formDepth = 4;

// From one row to the next, in font sizes; anything else is no list.
constexpr double closestRows = 0.8;
constexpr double widestRows = 3.0;
// What rounding does to distances that are meant to be the same, in parts of them.
constexpr double distanceTolerance = 0.05;
constexpr double sizeTolerance = 0.05;
// Texts on one line, in font sizes.
constexpr double lineTolerance = 0.2;
// Texts that begin in one place, in points.
constexpr double startTolerance = 0.5;
// How far below the border the first row may begin, in rows: with more room, there is one above it.
constexpr double largestGap = 0.75;

struct State
{
    fz_matrix matrix = fz_identity;
    float leading = 0;
    float fontSize = 0;
};

/// A text: where it begins, and its size as it is shown.
struct ShownText
{
    double x = 0.0;
    double y = 0.0;
    double size = 0.0;
};

/// A list without memory of its own; what it has no room for is left out.
template <typename Value, std::size_t room>
struct ShortList
{
    std::array<Value, room> values;
    std::size_t count = 0;

    void add(const Value& value)
    {
        if (count < room)
            values[count++] = value;
    }
    Value* begin() { return values.data(); }
    Value* end() { return values.data() + count; }
};

/// Follows a content stream to the texts and the filled rectangles that it shows.
struct Tracer
{
    std::array<State, mostStates> states = {};
    std::size_t depth = 0;
    fz_matrix line = fz_identity;
    ShortList<fz_rect, mostFills> path;

    ShortList<ShownText, mostRows> texts;
    ShortList<fz_rect, mostFills> fills;
    /// There is text that is turned or mirrored.
    bool isTurned = false;

    /// Beyond the room for them, states are one.
    State& state() { return states[std::min(depth, mostStates - 1)]; }

    void save()
    {
        const State current = state();
        ++depth;
        state() = current;
    }
    void restore()
    {
        if (depth > 0)
            --depth;
    }
    void transform(const fz_matrix& matrix) { state().matrix = fz_concat(matrix, state().matrix); }
    void moveLine(float x, float y) { line = fz_concat(fz_translate(x, y), line); }
    void nextLine() { moveLine(0, -state().leading); }
    void show()
    {
        const fz_matrix matrix = fz_concat(line, state().matrix);
        const float skew = std::fabs(matrix.b) + std::fabs(matrix.c);
        const float stretch = std::min(matrix.a, matrix.d);
        if (!(stretch > 0 && skew < stretch / 100)) {
            isTurned = true;
            return;
        }
        const auto size = static_cast<double>(matrix.d * state().fontSize);
        texts.add({static_cast<double>(matrix.e), static_cast<double>(matrix.f), size});
    }
    void fill()
    {
        for (const fz_rect& rect : path)
            fills.add(rect);
        path.count = 0;
    }
};

fz_matrix matrixOf(const float* values)
{
    return {values[0], values[1], values[2], values[3], values[4], values[5]};
}

constexpr int mostOperands = 6;

struct Operator
{
    const char* name;
    int operands;
    void (*run)(Tracer& tracer, const float* operands);
};

const Operator operators[] = {
    {"q", 0, [](Tracer& tracer, const float*) { tracer.save(); }},
    {"Q", 0, [](Tracer& tracer, const float*) { tracer.restore(); }},
    {"cm", 6, [](Tracer& tracer, const float* values) { tracer.transform(matrixOf(values)); }},
    {"re", 4,
     [](Tracer& tracer, const float* values) {
         const fz_rect rect = {
             std::min(values[0], values[0] + values[2]), std::min(values[1], values[1] + values[3]),
             std::max(values[0], values[0] + values[2]), std::max(values[1], values[1] + values[3])};
         tracer.path.add(fz_transform_rect(rect, tracer.state().matrix));
     }},
    {"f", 0, [](Tracer& tracer, const float*) { tracer.fill(); }},
    {"F", 0, [](Tracer& tracer, const float*) { tracer.fill(); }},
    {"f*", 0, [](Tracer& tracer, const float*) { tracer.fill(); }},
    {"B", 0, [](Tracer& tracer, const float*) { tracer.fill(); }},
    {"S", 0, [](Tracer& tracer, const float*) { tracer.path.count = 0; }},
    {"s", 0, [](Tracer& tracer, const float*) { tracer.path.count = 0; }},
    {"n", 0, [](Tracer& tracer, const float*) { tracer.path.count = 0; }},
    {"BT", 0, [](Tracer& tracer, const float*) { tracer.line = fz_identity; }},
    {"Tf", 1, [](Tracer& tracer, const float* values) { tracer.state().fontSize = values[0]; }},
    {"TL", 1, [](Tracer& tracer, const float* values) { tracer.state().leading = values[0]; }},
    {"Tm", 6, [](Tracer& tracer, const float* values) { tracer.line = matrixOf(values); }},
    {"Td", 2, [](Tracer& tracer, const float* values) { tracer.moveLine(values[0], values[1]); }},
    {"TD", 2,
     [](Tracer& tracer, const float* values) {
         tracer.state().leading = -values[1];
         tracer.moveLine(values[0], values[1]);
     }},
    {"T*", 0, [](Tracer& tracer, const float*) { tracer.nextLine(); }},
    {"Tj", 0, [](Tracer& tracer, const float*) { tracer.show(); }},
    {"TJ", 0, [](Tracer& tracer, const float*) { tracer.show(); }},
    {"'", 0,
     [](Tracer& tracer, const float*) {
         tracer.nextLine();
         tracer.show();
     }},
    {"\"", 0,
     [](Tracer& tracer, const float*) {
         tracer.nextLine();
         tracer.show();
     }},
};

struct Operands
{
    std::array<float, mostOperands> numbers = {};
    int count = 0;
    /// The last name, with a null at its end.
    std::array<char, 128> name = {};

    void add(float number)
    {
        if (count == mostOperands)
            std::move(numbers.begin() + 1, numbers.end(), numbers.begin());
        else
            ++count;
        numbers[static_cast<std::size_t>(count - 1)] = number;
    }
    /// The last ones.
    const float* last(int wanted) const { return numbers.data() + (count - wanted); }
};

void runOperator(Tracer& tracer, const char* name, const Operands& operands)
{
    const auto* known = std::find_if(std::begin(operators), std::end(operators), [&](const Operator& listed) {
        return std::strcmp(listed.name, name) == 0;
    });
    if (known != std::end(operators) && operands.count >= known->operands)
        known->run(tracer, operands.last(known->operands));
}

/// The first bytes of the stream's content; returns how many.
std::size_t readStart(fz_context* ctx, pdf_obj* form, std::array<unsigned char, mostBytes>& bytes)
{
    std::size_t count = 0;
    fz_var(count);
    fz_stream* stream = pdf_open_stream(ctx, form);
    fz_try(ctx)
    {
        count = fz_read(ctx, stream, bytes.data(), bytes.size());
    }
    fz_always(ctx)
    {
        fz_drop_stream(ctx, stream);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
    return count;
}

void trace(fz_context* ctx, Tracer& tracer, pdf_obj* form, pdf_obj* outerResources, int depth);

void traceOperators(
    fz_context* ctx, Tracer& tracer, fz_stream* stream, pdf_lexbuf* token, pdf_obj* resources, int depth)
{
    Operands operands;
    for (;;) {
        const pdf_token kind = pdf_lex(ctx, stream, token);
        if (kind == PDF_TOK_EOF)
            return;
        if (kind == PDF_TOK_INT)
            operands.add(static_cast<float>(token->i));
        else if (kind == PDF_TOK_REAL)
            operands.add(token->f);
        else if (kind == PDF_TOK_NAME)
            fz_strlcpy(operands.name.data(), token->scratch, operands.name.size());
        if (kind != PDF_TOK_KEYWORD)
            continue;
        // What follows is a picture's data.
        if (std::strcmp(token->scratch, "ID") == 0)
            return;
        if (std::strcmp(token->scratch, "Do") == 0) {
            pdf_obj* forms = pdf_dict_get(ctx, resources, PDF_NAME(XObject));
            pdf_obj* form = pdf_dict_gets(ctx, forms, operands.name.data());
            if (pdf_name_eq(ctx, pdf_dict_get(ctx, form, PDF_NAME(Subtype)), PDF_NAME(Form)))
                trace(ctx, tracer, form, resources, depth + 1);
        } else {
            runOperator(tracer, token->scratch, operands);
        }
        operands.count = 0;
    }
}

/// May throw as MuPDF does.
void trace(fz_context* ctx, Tracer& tracer, pdf_obj* form, pdf_obj* outerResources, int depth)
{
    if (depth >= formDepth || !pdf_is_stream(ctx, form))
        return;
    pdf_obj* own = pdf_dict_get(ctx, form, PDF_NAME(Resources));
    std::array<unsigned char, mostBytes> bytes;
    const std::size_t count = readStart(ctx, form, bytes);
    const std::size_t outerDepth = tracer.depth;
    tracer.save();
    if (depth > 0)
        tracer.transform(pdf_dict_get_matrix(ctx, form, PDF_NAME(Matrix)));
    fz_stream* stream = fz_open_memory(ctx, bytes.data(), count);
    pdf_lexbuf token;
    pdf_lexbuf_init(ctx, &token, PDF_LEXBUF_SMALL);
    fz_try(ctx)
    {
        traceOperators(ctx, tracer, stream, &token, own ? own : outerResources, depth);
    }
    fz_always(ctx)
    {
        pdf_lexbuf_fin(ctx, &token);
        fz_drop_stream(ctx, stream);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
    tracer.depth = outerDepth;
}

/// Keeps one text for each line that is in the box, from the top on.
void keepLines(ShortList<ShownText, mostRows>& texts, const fz_rect& box)
{
    const auto* end = std::remove_if(texts.begin(), texts.end(), [&](const ShownText& text) {
        return !(text.y >= static_cast<double>(box.y0) && text.y <= static_cast<double>(box.y1));
    });
    texts.count = static_cast<std::size_t>(end - texts.begin());
    std::sort(texts.begin(), texts.end(), [](const ShownText& a, const ShownText& b) { return a.y > b.y; });
    std::size_t kept = 0;
    for (const ShownText& text : texts) {
        if (kept > 0) {
            ShownText& line = texts.values[kept - 1];
            if (line.y - text.y < lineTolerance * line.size) {
                line.x = std::min(line.x, text.x);
                continue;
            }
        }
        texts.values[kept++] = text;
    }
    texts.count = kept;
}

/// From one line to the next, or 0 where that is not always the same or they differ in size.
double distanceOf(ShortList<ShownText, mostRows>& lines)
{
    if (lines.count < 2)
        return 0.0;
    const ShownText& first = lines.values[0];
    const double distance =
        (first.y - lines.values[lines.count - 1].y) / static_cast<double>(lines.count - 1);
    for (std::size_t i = 1; i < lines.count; ++i) {
        const double step = lines.values[i - 1].y - lines.values[i].y;
        const double growth = lines.values[i].size - first.size;
        if (std::abs(step - distance) > distanceTolerance * distance ||
            std::abs(growth) > sizeTolerance * first.size)
            return 0.0;
    }
    const double part = distance / first.size;
    return part >= closestRows && part <= widestRows ? distance : 0.0;
}

/// From the upper edge of a row to its text: what the colour behind a selected option says, else the same
/// room above the text as below.
double baselineOf(Tracer& tracer, double distance, double size)
{
    for (const fz_rect& fill : tracer.fills) {
        const auto upper = static_cast<double>(fill.y1);
        const double height = upper - static_cast<double>(fill.y0);
        if (std::abs(height - distance) > distanceTolerance * distance)
            continue;
        for (const ShownText& line : tracer.texts) {
            const double offset = upper - line.y;
            if (offset > size / 2.0 && offset <= distance)
                return offset;
        }
    }
    return FieldFont::ascent * size + (distance - FieldFont::lineHeight * size) / 2.0;
}

std::optional<FormFieldRows> measure(Tracer& tracer, const fz_rect& box, const PDFFormField& field)
{
    keepLines(tracer.texts, box);
    const double distance = distanceOf(tracer.texts);
    if (distance <= 0.0 || tracer.isTurned || tracer.texts.count > field.options.size())
        return std::nullopt;
    const ShownText& first = tracer.texts.values[0];
    // The rows of a text that is to have another size from now on are not the ones to keep.
    if (field.fontSize > 0.0 && std::abs(first.size - field.fontSize) > sizeTolerance * field.fontSize)
        return std::nullopt;

    FormFieldRows rows;
    rows.fontSize = first.size;
    rows.height = distance;
    const double firstBaseline = static_cast<double>(box.y1) - first.y;
    // No row begins outside of the field.
    rows.baseline = std::min(firstBaseline, baselineOf(tracer, distance, first.size));
    rows.top = firstBaseline - rows.baseline;
    if (rows.top > borderInset(field) + largestGap * distance)
        return std::nullopt;
    const bool beginTogether =
        std::all_of(tracer.texts.begin(), tracer.texts.end(), [&](const ShownText& text) {
            return std::abs(text.x - first.x) <= startTolerance;
        });
    const double left = first.x - static_cast<double>(box.x0);
    if (field.alignment == FormFieldAlignment::left && beginTogether && left >= 0.0 && left <= distance)
        rows.left = left;
    return rows;
}

/// False where there is no appearance that can be followed.
bool traceAppearance(fz_context* ctx, pdf_obj* form, int rotation, Tracer& tracer, fz_rect& box)
{
    bool isTraced = false;
    fz_var(isTraced);
    fz_try(ctx)
    {
        box = pdf_dict_get_rect(ctx, form, PDF_NAME(BBox));
        const fz_matrix matrix = pdf_dict_get_matrix(ctx, form, PDF_NAME(Matrix));
        // The rows are measured before they are turned, which has to be as the field says.
        constexpr float quarter = 1.57079633F;
        const auto turns = std::lround(std::atan2(matrix.b, matrix.a) / quarter);
        if (pdf_is_stream(ctx, form) && (turns + 4) % 4 * 90 == rotation) {
            trace(ctx, tracer, form, nullptr, 0);
            isTraced = true;
        }
    }
    fz_catch(ctx)
    {
        engine::rethrowUnlessDamage(ctx);
        isTraced = false;
    }
    return isTraced;
}

} // namespace

void readOptionRows(fz_context* ctx, pdf_obj* widget, PDFFormField& field)
{
    Tracer tracer;
    fz_rect box = fz_empty_rect;
    pdf_obj* form = pdf_dict_get(ctx, pdf_dict_get(ctx, widget, PDF_NAME(AP)), PDF_NAME(N));
    field.rows.reset();
    if (traceAppearance(ctx, form, field.rotation, tracer, box))
        field.rows = measure(tracer, box, field);
}

} // namespace pdf::fields
