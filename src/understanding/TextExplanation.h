// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "insight/ExplanationResult.h"

#include <QString>
#include <QStringView>

namespace quillo {

/// Reads a passage in plainer words. Never fails; `simplified` is always set. Any thread.
ExplanationResult explainText(const QString& passage);

/// Replaces legal phrases by everyday ones, phrase after phrase, each step working on the result of the one
/// before: in any case (by Unicode's simple case folding), inside longer words too, always by lower case. So
/// "hereinafter" becomes "in this documentafter", "herein" being replaced first. All else stays as it is.
QString simplifyText(const QString& passage);

/// Names the kinds of content that the passage shows by certain words, which count inside longer words too.
QString generateBasicExplanation(QStringView passage);

} // namespace quillo
