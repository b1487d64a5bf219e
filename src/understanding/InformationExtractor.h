// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/DocumentState.h"
#include "insight/ExtractedItem.h"
#include "platform/Actor.h"

#include <QFuture>

#include <vector>

namespace quillo {

/// Extracts the data of documents on a thread of its own.
class InformationExtractor
{
public:
    InformationExtractor();

    static InformationExtractor& shared();

    /// The items on the pages that the state holds now, page after page. The state may go meanwhile.
    QFuture<std::vector<ExtractedItem>> extractInformation(const DocumentState& documentState);

private:
    Actor m_actor;
};

} // namespace quillo
