// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/AppDelegate.h"

#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "support/PDFWriter.h"
#include "support/RecordedAnalytics.h"
#include "support/Widgets.h"

#include <gtest/gtest.h>

#include <QFileDialog>
#include <QLineEdit>

namespace quillo {
namespace {

class AppDelegateTest : public testing::Test
{
protected:
    AppDelegateTest()
        : m_delegate(m_analytics.service())
    {
        NotificationCenter::defaultCenter().addObserver(
            &m_observer, Notifications::openPDFDocument,
            [this](const QVariant& object) { m_posted.append(object); });
    }

    QFileDialog* openPanel()
    {
        m_delegate.openDocument();
        return waitForDialog<QFileDialog>();
    }

    static bool isPanelGone()
    {
        return QTest::qWaitFor([] { return !isDialogOpen<QFileDialog>(); });
    }

    RecordedAnalytics m_analytics;
    AppDelegate m_delegate;
    QObject m_observer;
    QList<QVariant> m_posted;
};

TEST_F(AppDelegateTest, LetsOnePDFFileBeChosen)
{
    QFileDialog* panel = openPanel();
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(panel->acceptMode(), QFileDialog::AcceptOpen);
    ASSERT_EQ(panel->nameFilters().size(), 1);
    EXPECT_TRUE(panel->nameFilters().first().contains(QStringLiteral("*.pdf")));
    EXPECT_TRUE(panel->isModal());
    panel->reject();
    EXPECT_TRUE(isPanelGone());
}

TEST_F(AppDelegateTest, PostsTheChosenFileOnce)
{
    const TestFolder folder;
    const QString path = folder.write(QStringLiteral("chosen.pdf"), "any bytes");
    QFileDialog* panel = openPanel();
    ASSERT_TRUE(panel);
    auto* name = panel->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    name->setText(path);
    QTest::keyClick(name, Qt::Key_Return);
    ASSERT_TRUE(isPanelGone());
    EXPECT_EQ(m_posted, QList<QVariant>{QUrl::fromLocalFile(path)});
}

TEST_F(AppDelegateTest, PostsNothingWhenTheChoiceIsCancelled)
{
    QFileDialog* panel = openPanel();
    ASSERT_TRUE(panel);
    QTest::keyClick(panel, Qt::Key_Escape);
    ASSERT_TRUE(isPanelGone());
    EXPECT_TRUE(m_posted.isEmpty());
}

TEST_F(AppDelegateTest, StartsAnalyticsWithTheApplication)
{
    m_delegate.applicationDidFinishLaunching();
    EXPECT_EQ(m_analytics.types(), QStringList{QStringLiteral("appLaunch")});
}

TEST_F(AppDelegateTest, EndsAnalyticsWithTheApplication)
{
    m_delegate.applicationDidFinishLaunching();
    for (int i = 0; i < 8; ++i)
        m_analytics.service().trackEvent(EventType::zoom);
    // The end of the session is the tenth event, so it is sent at once and there is nothing to wait for.
    m_delegate.applicationWillTerminate();
    EXPECT_TRUE(m_analytics.types().isEmpty());
    EXPECT_EQ(m_analytics.sendEverything().size(), 1U);
}

} // namespace
} // namespace quillo
