// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QWidget>

namespace quillo {

/// Names the open document, cut in the middle where it does not fit.
class DocumentChip : public QWidget
{
    Q_OBJECT

public:
    explicit DocumentChip(QWidget* parent = nullptr);

    void setFileName(const QString& fileName);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_fileName;
};

} // namespace quillo
