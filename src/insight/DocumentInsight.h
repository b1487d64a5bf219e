// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "insight/ExtractedItem.h"
#include "json/PointInTime.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <vector>

namespace quillo {

/// What the analysers found out about a document. A plain value.
struct DocumentInsight
{
    enum class DocumentType { bill, letter, form, manual, unknown };

    /// One thing that the document asks of its reader.
    struct ActionReason
    {
        enum class ReasonType { dueDate, payment, signature, submission };

        ReasonType type = ReasonType::dueDate;
        /// The sentence shown to the user.
        QString description;
        /// Zero-based page where it was found.
        std::int64_t pageNumber = 0;
        /// Only for due dates that could be parsed.
        std::optional<PointInTime> dueDate;
    };

    struct ActionRequired
    {
        /// True when at least one action was found.
        bool required = false;
        /// In the order of detection.
        std::vector<ActionReason> reasons;
    };

    DocumentType documentType = DocumentType::unknown;
    /// 0.0 to 1.0.
    double confidence = 0.0;
    /// Readable reasons for the classification, at most five.
    QStringList evidence;
    ActionRequired actionRequired;
    std::vector<ExtractedItem> extractedItems;
    /// One or two sentences for the user.
    QString summary;
};

/// The type's name, in data and on the screen alike ("Bill / Invoice").
QString rawValue(DocumentInsight::DocumentType type);
/// The reason's name, in data and on the screen alike ("Due Date").
QString rawValue(DocumentInsight::ActionReason::ReasonType type);

/// The case with exactly this name (case-sensitive, whole string), or none.
std::optional<DocumentInsight::DocumentType> documentTypeFromRawValue(QStringView name);
std::optional<DocumentInsight::ActionReason::ReasonType> reasonTypeFromRawValue(QStringView name);

} // namespace quillo
