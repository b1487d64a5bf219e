// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"

#include <QObject>

namespace quillo {

class DocumentState;

/// Ties the reading of a file to the state that it is read for: the reading is cancelled when the state is
/// deleted, when it names another file or none, and when another reading begins for it. The guard is a child
/// of the state and is to be deleted when the reading is over. Main thread.
class ReadingGuard : public QObject
{
    Q_OBJECT

public:
    /// Ends the reading that was begun for the state before.
    ReadingGuard(DocumentState* state, const pdf::Cancellation& cancellation);
    /// Cancels the reading, which changes nothing when it is over.
    ~ReadingGuard() override;

private:
    const pdf::Cancellation m_cancellation;
};

} // namespace quillo
