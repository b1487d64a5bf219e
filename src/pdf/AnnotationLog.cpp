// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/AnnotationLog.h"

#include <new>

namespace pdf {

void AnnotationLog::note(int object)
{
    if (object == 0) {
        noteAll();
        return;
    }
    try {
        Stamp& stamp = m_stamps[object];
        m_objects.erase(stamp);
        stamp = ++m_now;
        m_objects.emplace(stamp, object);
    } catch (const std::bad_alloc&) {
        // Without the memory to say which one it is, it may be any.
        noteAll();
    }
}

void AnnotationLog::noteAll()
{
    m_all = m_lists = ++m_now;
    m_objects.clear();
    m_stamps.clear();
}

std::vector<int> AnnotationLog::changedSince(Stamp since) const
{
    std::vector<int> objects;
    for (auto change = m_objects.upper_bound(since); change != m_objects.end(); ++change)
        objects.push_back(change->second);
    return objects;
}

} // namespace pdf
