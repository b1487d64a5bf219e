// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/AppDelegate.h"

#include "analytics/AnalyticsService.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"

#include <QApplication>
#include <QFileDialog>

namespace quillo {

AppDelegate::AppDelegate(AnalyticsService& analyticsService, QObject* parent)
    : QObject(parent)
    , m_analyticsService(analyticsService)
{}

void AppDelegate::applicationDidFinishLaunching()
{
    m_analyticsService.initialize();
}

void AppDelegate::applicationWillTerminate()
{
    m_analyticsService.flush();
}

void AppDelegate::openDocument()
{
    auto* panel = new QFileDialog(QApplication::activeWindow());
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setFileMode(QFileDialog::ExistingFile);
    panel->setNameFilter(tr("PDF documents (*.pdf *.PDF)"));
    // Every dialog tells the file, but only the URL can name one whose bytes are no UTF-8.
    connect(panel, &QFileDialog::fileSelected, this, [panel] {
        NotificationCenter::defaultCenter().post(
            Notifications::openPDFDocument, panel->selectedUrls().constFirst());
    });
    panel->open();
}

} // namespace quillo
