// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/TextExplainer.h"

#include "understanding/TextExplanation.h"

namespace quillo {

TextExplainer::TextExplainer()
    : m_actor(QStringLiteral("TextExplainer"))
{}

TextExplainer& TextExplainer::shared()
{
    static auto* const explainer = new TextExplainer;
    return *explainer;
}

QFuture<ExplanationResult> TextExplainer::explainText(const QString& passage)
{
    return m_actor.run([passage] { return quillo::explainText(passage); });
}

} // namespace quillo
