// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <string_view>
#include <vector>

namespace samples {

/// A piece of the manual that stands between two others with some space around it.
struct ManualBlock
{
    enum class Kind {
        /// A heading below the chapter's, which gets an entry in the outline.
        section,
        paragraph,
        /// One entry of a list.
        bullet,
        /// One numbered step; the numbers begin anew after anything else.
        step,
        /// Boxed, to be read before going on. The text begins with a word and a colon.
        warning,
        /// Two columns, parted by a vertical bar.
        tableRow,
        /// The station's drawing with its parts numbered.
        figure,
        /// A line that leads to another chapter; `chapter` tells which.
        crossReference,
        /// A line that leads to the maker's web page, whose address is the text.
        webLink,
    };

    Kind kind;
    std::string_view text;
    /// The number of the chapter, from 1.
    int chapter = 0;
};

struct ManualChapter
{
    std::string_view title;
    std::vector<ManualBlock> blocks;
};

/// Ten chapters, each of which fits on a page.
const std::vector<ManualChapter>& manualChapters();

} // namespace samples
