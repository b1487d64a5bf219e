// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/InAppToolbar.h"

#include "app/DocumentChip.h"
#include "controls/MenuButton.h"
#include "document/DocumentState.h"
#include "support/Printing.h"
#include "support/Widgets.h"

#include <gtest/gtest.h>

#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace quillo {
namespace {

class InAppToolbarTest : public testing::Test
{
protected:
    InAppToolbarTest()
        : m_toolbar(&m_state)
    {
        m_toolbar.resize(900, m_toolbar.height());
        m_toolbar.fill();
        m_toolbar.show();
        QApplication::setActiveWindow(&m_toolbar);
    }

    /// The items that can be seen in the menu, each with its shortcut.
    QStringList items(const QString& menu)
    {
        QStringList result;
        for (const auto* button : m_toolbar.findChildren<MenuButton*>()) {
            if (button->text() != menu)
                continue;
            for (const QAction* action : button->menu()->actions()) {
                if (action->isVisible())
                    result.append(action->text() + u' ' + action->shortcut().toString());
            }
        }
        return result;
    }

    void openDocument(const QString& path = QStringLiteral("/tmp/annual report.pdf"))
    {
        m_state.setUrl(QUrl::fromLocalFile(path));
    }

    DocumentState m_state;
    InAppToolbar m_toolbar;
};

TEST_F(InAppToolbarTest, OffersOnlyWhatCanBeDoneWithoutADocument)
{
    EXPECT_EQ(items(QStringLiteral("File")), QStringList{QStringLiteral("Open PDF... Ctrl+O")});
    EXPECT_EQ(items(QStringLiteral("View")), QStringList{QStringLiteral("Show Sidebar Ctrl+Alt+S")});
    openDocument();
    EXPECT_EQ(
        items(QStringLiteral("File")),
        (QStringList{QStringLiteral("Open PDF... Ctrl+O"), QStringLiteral("Close Document Ctrl+W")}));
    m_state.setUrl(std::nullopt);
    EXPECT_EQ(items(QStringLiteral("File")).size(), 1);
}

TEST_F(InAppToolbarTest, HasShortcutsThatWorkInTheWholeWindow)
{
    QSignalSpy open(&m_toolbar, &InAppToolbar::openDocumentRequested);
    QSignalSpy close(&m_toolbar, &InAppToolbar::closeDocumentRequested);
    QTest::keyClick(&m_toolbar, Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(open.count(), 1);
    QTest::keyClick(&m_toolbar, Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(close.count(), 0) << "there is nothing to close";
    openDocument();
    QTest::keyClick(&m_toolbar, Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(close.count(), 1);
}

TEST_F(InAppToolbarTest, NamesTheOpenDocument)
{
    auto* chip = m_toolbar.findChild<DocumentChip*>();
    EXPECT_TRUE(chip->isHidden());
    openDocument();
    EXPECT_FALSE(chip->isHidden());
    EXPECT_EQ(chip->accessibleName(), QStringLiteral("annual report.pdf"));
}

TEST_F(InAppToolbarTest, CutsALongNameRatherThanItsButtons)
{
    openDocument(QStringLiteral("/tmp/") + QString(180, u'w') + QStringLiteral(".pdf"));
    QCoreApplication::processEvents();
    const auto* chip = m_toolbar.findChild<DocumentChip*>();
    const auto* toggle = visibleButton(m_toolbar, QStringLiteral("Toggle Sidebar"));
    EXPECT_LT(chip->geometry().right(), toggle->geometry().left());
    EXPECT_LE(toggle->geometry().right(), m_toolbar.width());
    EXPECT_TRUE(chip->toolTip().endsWith(QStringLiteral(".pdf")))
        << "the whole name can be read all the same";
}

TEST_F(InAppToolbarTest, TogglesTheSidebar)
{
    const QSignalSpy toggled(&m_toolbar, &InAppToolbar::sidebarToggled);
    m_toolbar.setSidebarShown(true);
    EXPECT_EQ(toggled.count(), 0) << "being told is no request";
    click(m_toolbar, QStringLiteral("Toggle Sidebar"));
    ASSERT_EQ(toggled.count(), 1);
    EXPECT_EQ(toggled.first().first(), QVariant(false));
}

} // namespace
} // namespace quillo
