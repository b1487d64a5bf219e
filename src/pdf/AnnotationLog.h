// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>
#include <map>
#include <unordered_map>
#include <vector>

namespace pdf {

/// Which annotations of a document have come to look or lie differently, and when, so that what was recorded
/// of them before is known to be out of date and nothing else is. Under the document's lock.
class AnnotationLog
{
public:
    using Stamp = std::uint64_t;

    Stamp now() const { return m_now; }

    /// The annotation with this object number looks or lies differently. One without a number may be any.
    /// Never fails.
    void note(int object);
    /// Annotations were added to a page or taken from one.
    void noteLists() { m_lists = ++m_now; }
    /// Any annotation may look or lie differently, and any page may have others.
    void noteAll();

    /// Whether pages have had the annotations that they have since the stamp was the present one.
    bool areListsCurrent(Stamp since) const { return m_lists <= since; }
    /// Whether what was recorded then is still so, if the annotation is not among changedSince().
    bool isUsable(Stamp since) const { return m_all <= since; }
    /// The object numbers of the annotations that have changed after the stamp.
    std::vector<int> changedSince(Stamp since) const;

private:
    Stamp m_now = 0;
    Stamp m_lists = 0;
    Stamp m_all = 0;
    /// The last change of each annotation, both ways round.
    std::map<Stamp, int> m_objects;
    std::unordered_map<int, Stamp> m_stamps;
};

} // namespace pdf
