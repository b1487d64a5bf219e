// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "insight/ExplanationResult.h"
#include "platform/Actor.h"

#include <QFuture>
#include <QString>

namespace quillo {

/// Explains selected passages on a thread of its own.
class TextExplainer
{
public:
    TextExplainer();

    static TextExplainer& shared();

    QFuture<ExplanationResult> explainText(const QString& passage);

private:
    Actor m_actor;
};

} // namespace quillo
