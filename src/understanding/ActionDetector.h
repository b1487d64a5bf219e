// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/DocumentState.h"
#include "insight/DocumentInsight.h"
#include "platform/Actor.h"
#include "understanding/ActionDetection.h"

#include <QFuture>

namespace quillo {

/// Detects what documents ask for on a thread of its own.
class ActionDetector
{
public:
    ActionDetector();

    static ActionDetector& shared();

    /// The actions on the pages that the state holds now. The state may go meanwhile.
    QFuture<DocumentInsight::ActionRequired>
    detectActions(const DocumentState& documentState, const DateSettings& settings = DateSettings::system());

private:
    Actor m_actor;
};

} // namespace quillo
