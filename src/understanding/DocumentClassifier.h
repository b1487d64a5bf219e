// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/DocumentState.h"
#include "insight/DocumentInsight.h"
#include "platform/Actor.h"

#include <QFuture>

namespace quillo {

/// Classifies documents on a thread of its own.
class DocumentClassifier
{
public:
    DocumentClassifier();

    static DocumentClassifier& shared();

    /// Says what kind of document the pages are that the state holds now. The state may go meanwhile.
    QFuture<DocumentInsight> classifyDocument(const DocumentState& documentState);

private:
    Actor m_actor;
};

} // namespace quillo
