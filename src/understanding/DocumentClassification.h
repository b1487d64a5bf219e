// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "insight/DocumentInsight.h"

#include <QString>
#include <QStringView>

#include <span>

namespace quillo {

/// One type of document and the keywords that speak for it, in the order in which evidence is listed.
struct DocumentTypeKeywords
{
    DocumentInsight::DocumentType type;
    /// Lower case, searched as plain substrings of the lower-cased text: "tax" is found in "syntax".
    std::span<const QStringView> keywords;
};

/// The tables in the order in which the types are weighed; of types with equal scores the first wins.
std::span<const DocumentTypeKeywords> documentTypeKeywords();

/// Says what kind of document a text is by counting keywords in it. A keyword is worth 1 when it occurs, 0.2
/// more for each repetition up to the third; a type's score is what its keywords are worth divided by their
/// number, and the best type is taken when its score is more than 0.2. The result holds no actions and no
/// items. Takes one pass over the text, whatever the number of keywords. Any thread.
DocumentInsight classifyText(QStringView text);

/// The sentence that tells the user the type and, in whole percent rounded down, the confidence (finite).
QString generateSummary(DocumentInsight::DocumentType type, double confidence);

} // namespace quillo
