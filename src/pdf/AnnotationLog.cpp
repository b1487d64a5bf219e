// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/AnnotationLog.h"

namespace pdf {

void AnnotationLog::note(int object)
{
    if (object == 0) {
        noteAll();
        return;
    }
    Stamp& stamp = m_stamps[object];
    m_objects.erase(stamp);
    stamp = ++m_now;
    m_objects.emplace(stamp, object);
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
