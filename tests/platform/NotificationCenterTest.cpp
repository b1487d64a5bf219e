// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QUrl>

namespace quillo {
namespace {

TEST(NotificationCenterTest, ReachesEveryObserverOfTheName)
{
    NotificationCenter center;
    QObject first;
    QObject second;
    QList<QUrl> received;
    const auto keep = [&](const QVariant& object) { received.append(object.toUrl()); };
    center.addObserver(&first, Notifications::openPDFDocument, keep);
    center.addObserver(&second, Notifications::openPDFDocument, keep);
    center.addObserver(&second, Notifications::jumpToPage, keep);
    const QUrl url = QUrl::fromLocalFile(QStringLiteral("/tmp/a.pdf"));
    center.post(Notifications::openPDFDocument, url);
    EXPECT_EQ(received, (QList<QUrl>{url, url}));
}

TEST(NotificationCenterTest, ForgetsObserversWithTheirContext)
{
    NotificationCenter center;
    int calls = 0;
    {
        QObject context;
        center.addObserver(&context, Notifications::zoomIn, [&](const QVariant&) { ++calls; });
        center.post(Notifications::zoomIn);
    }
    center.post(Notifications::zoomIn);
    EXPECT_EQ(calls, 1);
}

TEST(NotificationCenterTest, PostsWithoutAnyObserver)
{
    NotificationCenter center;
    center.post(Notifications::zoomToFit);
    int calls = 0;
    QObject context;
    center.addObserver(&context, Notifications::zoomToFit, [&](const QVariant& object) {
        ++calls;
        EXPECT_FALSE(object.isValid());
    });
    EXPECT_EQ(calls, 0) << "an earlier notification must not reach a later observer";
    center.post(Notifications::zoomToFit);
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace quillo
