// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QWidget>

class QVariantAnimation;
class QVBoxLayout;

namespace quillo {

/// What slides open below a feature's row: its result, and below that whatever the row adds.
class ResultDrawer : public QWidget
{
    Q_OBJECT

public:
    explicit ResultDrawer(QWidget* footer, QWidget* parent = nullptr);

    /// Replaces the content; the drawer takes it.
    void setContent(QWidget* content);

    /// Slides, unless the system asks for reduced motion.
    void setOpen(bool open);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int fullHeight() const;

    QVBoxLayout* m_column;
    QWidget* m_content = nullptr;
    QVariantAnimation* m_sliding;
    bool m_isOpen = false;
};

} // namespace quillo
