// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <mupdf/fitz.h>

#include <QSizeF>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace pdf {

/// Drawing operations of MuPDF. Recorded under the document's lock, immutable from then on.
class RecordedList
{
public:
    /// Draws something on the device; may throw as MuPDF does.
    using Run = void (*)(fz_context* ctx, void* source, fz_device* device, fz_cookie* cookie);

    RecordedList() = default;
    ~RecordedList();
    RecordedList(const RecordedList&) = delete;
    RecordedList& operator=(const RecordedList&) = delete;

    /// Records what `run(source)` draws on a page of this size, up to where it is damaged. May throw as MuPDF
    /// does.
    void record(fz_context* ctx, fz_rect page, Run run, void* source, fz_cookie* cookie);
    /// Finds out the area. May throw as MuPDF does.
    void measure(fz_context* ctx, fz_cookie* cookie);

    fz_display_list* list() const { return m_list; }
    /// Nothing is drawn outside of it; in display space.
    fz_rect area() const { return m_area; }
    /// Of the pictures that it shows.
    std::int64_t samples() const { return m_samples; }
    /// What recording it has left in memory.
    std::size_t bytes() const { return m_bytes; }

private:
    fz_display_list* m_list = nullptr;
    fz_rect m_area = fz_infinite_rect;
    std::int64_t m_samples = 0;
    std::size_t m_bytes = 0;
};

/// Lists that are drawn one over the other; immutable once it is shared. The areas stand beside them, so that
/// to pass over one costs no look at it.
struct ListGroup
{
    struct Part
    {
        std::shared_ptr<const RecordedList> list;
        fz_rect area;
    };

    std::vector<Part> parts;
    /// Of all of them.
    fz_rect area = fz_empty_rect;
    std::int64_t samples = 0;
    std::size_t bytes = 0;

    void add(const std::shared_ptr<const RecordedList>& list)
    {
        parts.push_back({list, list->area()});
        area = fz_union_rect(area, list->area());
        samples += list->samples();
        bytes += list->bytes();
    }
};

/// What a page draws: the lists of its groups one over the other. In groups, because of thousands of lists
/// all but a few are usually those of another handle.
struct DisplayListHandle
{
    QSizeF displaySize;
    std::vector<std::shared_ptr<const ListGroup>> groups;
};

} // namespace pdf
