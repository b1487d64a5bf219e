// SPDX-License-Identifier: AGPL-3.0-or-later
#include "insight/DocumentInsight.h"

#include "json/RawValues.h"

namespace quillo {
namespace {

using DocumentType = DocumentInsight::DocumentType;
using ReasonType = DocumentInsight::ActionReason::ReasonType;

constexpr RawValueTable<DocumentType, 5> documentTypes{{
    {DocumentType::bill, u"Bill / Invoice"},
    {DocumentType::letter, u"Letter"},
    {DocumentType::form, u"Form"},
    {DocumentType::manual, u"Manual / Guide"},
    {DocumentType::unknown, u"Unknown"},
}};

constexpr RawValueTable<ReasonType, 4> reasonTypes{{
    {ReasonType::dueDate, u"Due Date"},
    {ReasonType::payment, u"Payment Required"},
    {ReasonType::signature, u"Signature Required"},
    {ReasonType::submission, u"Submission Required"},
}};

} // namespace

QString rawValue(DocumentType type)
{
    return nameIn(documentTypes, type);
}

QString rawValue(ReasonType type)
{
    return nameIn(reasonTypes, type);
}

std::optional<DocumentType> documentTypeFromRawValue(QStringView name)
{
    return caseIn(documentTypes, name);
}

std::optional<ReasonType> reasonTypeFromRawValue(QStringView name)
{
    return caseIn(reasonTypes, name);
}

} // namespace quillo
