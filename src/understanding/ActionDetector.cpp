// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/ActionDetector.h"

namespace quillo {

ActionDetector::ActionDetector()
    : m_actor(QStringLiteral("ActionDetector"))
{}

ActionDetector& ActionDetector::shared()
{
    static auto* const detector = new ActionDetector;
    return *detector;
}

QFuture<DocumentInsight::ActionRequired>
ActionDetector::detectActions(const DocumentState& documentState, const DateSettings& settings)
{
    return m_actor.run(
        [pages = documentState.pageTexts(), settings] { return quillo::detectActions(*pages, settings); });
}

} // namespace quillo
