// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QObject>

namespace quillo {

class AnalyticsService;

/// What belongs to the application rather than to one of its windows.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    /// The service must outlive the delegate.
    explicit AppDelegate(AnalyticsService& analyticsService, QObject* parent = nullptr);

    /// To be called once the application object is there, before any window.
    void applicationDidFinishLaunching();
    /// To be called when all windows are closed. While usage events are still to be sent this does not return
    /// (see AnalyticsService::flush()).
    void applicationWillTerminate();

public Q_SLOTS:
    /// Lets the user choose one PDF file and posts openPDFDocument with its URL; nothing when the choice is
    /// cancelled. The windows open the file, not the delegate.
    void openDocument();

private:
    AnalyticsService& m_analyticsService;
};

} // namespace quillo
