// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "insight/DocumentInsight.h"

#include <QWidget>

namespace quillo {

/// Says what kind of document it is, how sure that is and why.
class DocumentTypeResultView : public QWidget
{
    Q_OBJECT

public:
    explicit DocumentTypeResultView(const DocumentInsight& insight, QWidget* parent = nullptr);
};

} // namespace quillo
