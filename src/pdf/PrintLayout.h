// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QMarginsF>
#include <QSizeF>

#include <vector>

namespace pdf {

enum class PageScaling {
    /// Pages that are too big are made smaller; the others keep their size.
    shrinkToFit,
    /// Every page becomes as big as fits.
    fit,
    /// What is too big is cut off.
    actualSize,
};

/// What is turned where a page lies across the paper.
enum class PageTurning {
    none,
    /// The page, a quarter turn against the clock. Paper that goes through a printer is to lie the same way
    /// from the first sheet to the last.
    page,
    /// The paper, so that the page stands upright on a screen.
    paper,
};

/// How pages of a document are put on sheets of paper.
struct PrintLayout
{
    /// Zero-based, in the order in which they are wanted; a page may be wanted more than once.
    std::vector<int> pages;
    /// In points.
    QSizeF paper = {595.276, 841.89};
    /// The edges of the paper that stay blank, in points. Each page is centred within them.
    QMarginsF margins;
    PageScaling scaling = PageScaling::shrinkToFit;
    PageTurning turning = PageTurning::page;
    int copies = 1;
    /// Whether one copy ends before the next begins, or all copies of a page follow one another.
    bool collates = true;
    /// The last sheet comes first.
    bool reverses = false;
    /// In pixels per inch, for what cannot be taken over as it is and is drawn.
    int resolution = 300;
};

/// What has become of a print.
struct PrintOutcome
{
    int sheets = 0;
    /// Zero-based, ascending: pages that are damaged and came out in part or blank.
    std::vector<int> damagedPages;
};

} // namespace pdf
