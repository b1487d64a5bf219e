// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

// Finds in real windows what a person would look for there.

/// The button that a screen reader calls by this name; null when there is none to be seen.
inline QAbstractButton* visibleButton(const QWidget& window, const QString& name)
{
    for (auto* button : window.findChildren<QAbstractButton*>()) {
        if (button->accessibleName() == name && button->isVisible())
            return button;
    }
    return nullptr;
}

/// Waits for the button and clicks it.
inline void click(const QWidget& window, const QString& name)
{
    QAbstractButton* button = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        button = visibleButton(window, name);
        return button && button->isEnabled();
    })) << "there is no button "
        << name.toStdString() << " that can be pressed";
    QTest::mouseClick(button, Qt::LeftButton);
}

/// The texts of all labels that can be seen, in the order in which they were made.
inline QStringList visibleTexts(const QWidget& window)
{
    QStringList texts;
    for (const auto* label : window.findChildren<QLabel*>()) {
        if (label->isVisible() && !label->text().isEmpty())
            texts.append(label->text());
    }
    return texts;
}

inline bool shows(const QWidget& window, const QString& text)
{
    return QTest::qWaitFor([&] { return visibleTexts(window).contains(text); });
}

/// Waits for a dialog of this class; null when none comes.
template <typename Dialog>
Dialog* waitForDialog()
{
    Dialog* found = nullptr;
    const bool came = QTest::qWaitFor([&] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            found = qobject_cast<Dialog*>(widget);
            if (found && found->isVisible())
                return true;
        }
        return false;
    });
    return came ? found : nullptr;
}

template <typename Dialog>
bool isDialogOpen()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<Dialog*>(widget) && widget->isVisible())
            return true;
    }
    return false;
}
