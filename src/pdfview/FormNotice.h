// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QFrame>

namespace pdf {

/// A line above the pages that says why a form cannot be filled in, until the user closes it and
/// with that deletes it.
class FormNotice : public QFrame
{
    Q_OBJECT

public:
    explicit FormNotice(QWidget* parent);

    /// Puts it at the upper edge of its parent.
    void place();
};

} // namespace pdf
