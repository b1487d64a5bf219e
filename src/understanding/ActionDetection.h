// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/PageText.h"
#include "insight/DocumentInsight.h"

#include <QLocale>
#include <QTimeZone>

namespace quillo {

/// How due dates become instants and texts.
struct DateSettings
{
    /// A due date is the beginning of its day here; a day that the zone skips is no date. UTC stands in for a
    /// zone that is not known.
    QTimeZone timeZone;
    /// Due dates are printed in its medium date style.
    QLocale locale;

    /// The user's own.
    static DateSettings system();
};

/// Tells what the pages ask of their reader, by fixed phrases: reasons by page, on a page due dates, payment,
/// signature and submission. Each due-date phrase gives a reason of its own, with the date that stands within
/// 100 user-perceived characters behind the phrase's first occurrence, if there is one. Never fails. Time is
/// linear in the text. Any thread.
DocumentInsight::ActionRequired detectActions(const PageTexts& pages, const DateSettings& settings);

} // namespace quillo
