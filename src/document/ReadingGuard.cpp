// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/ReadingGuard.h"

#include "document/DocumentState.h"

namespace quillo {

ReadingGuard::ReadingGuard(DocumentState* state, const pdf::Cancellation& cancellation)
    : m_cancellation(cancellation)
{
    qDeleteAll(state->findChildren<ReadingGuard*>(QString(), Qt::FindDirectChildrenOnly));
    setParent(state);
    connect(state, &DocumentState::didChange, this, [this](DocumentState::Field field) {
        if (field == DocumentState::Field::url)
            m_cancellation.cancel();
    });
}

ReadingGuard::~ReadingGuard()
{
    m_cancellation.cancel();
}

} // namespace quillo
