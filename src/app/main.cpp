// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsService.h"
#include "app/AppDelegate.h"
#include "app/ContentView.h"
#include "controls/AppStyle.h"
#include "pdf/FileName.h"
#include "platform/BundleInfo.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/Theme.h"
#include "platform/UserDefaults.h"
#include "printing/RunningPrints.h"
#include "viewer/DocumentOpening.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QScreen>
#include <QThread>
#include <QUrl>

#include <sys/stat.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace quillo;

namespace {

/// The file that the command line names, as far as can be told without taking the options apart; empty when
/// there is none. A wrong guess costs nothing but opening a file that is not shown.
QString likelyFile(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        struct stat status = {};
        if (argv[i][0] != '-' && ::stat(argv[i], &status) == 0 && S_ISREG(status.st_mode))
            return pdf::absoluteFilePath(pdf::fileNameFromBytes(argv[i]));
    }
    return {};
}

/// Opens the file while the application object is being made, which takes longer than opening does.
void beginEarly(const QString& path)
{
    // Qt takes the first thread that it meets for the main thread, and that must not be the one that opens.
    QThread::currentThread();
    bool isScaled = false;
    const double scaleFactor = qEnvironmentVariable("QT_SCALE_FACTOR").toDouble(&isScaled);
    DocumentOpening::beginEarly(path, isScaled ? scaleFactor : 1.0);
}

/// The file that the command line names; empty when there is none. The arguments are taken as bytes, because
/// the application object's list has lost those that are no UTF-8. Qt's own options have to be gone already.
QString fileFromCommandLine(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(pdf::fileNameFromBytes(argv[i]));
    QCommandLineParser parser;
    parser.setApplicationDescription(QApplication::translate("main", "Reads PDF documents."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(
        QStringLiteral("file"), QApplication::translate("main", "PDF document to open."),
        QStringLiteral("[file]"));
    parser.process(arguments);
    const QStringList files = parser.positionalArguments();
    return files.isEmpty() ? QString() : pdf::absoluteFilePath(files.first());
}

} // namespace

int main(int argc, char** argv)
{
    const QString early = likelyFile(argc, argv);
    if (!early.isEmpty())
        beginEarly(early);

    QApplication::setStyle(new AppStyle);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillo"));
    QApplication::setApplicationVersion(*BundleInfo::informationValue(u"CFBundleShortVersionString"));
    QApplication::setDesktopFileName(QStringLiteral("quillo"));
    const QString file = fileFromCommandLine(argc, argv);

    Theme::setCurrent(systemPrefersDark() ? Theme::dark() : Theme::light());
    QApplication::setPalette(Theme::current().palette());

    AppDelegate delegate(AnalyticsService::shared());
    delegate.applicationDidFinishLaunching();

    auto window = std::make_unique<ContentView>(AnalyticsService::shared());
    QObject::connect(
        window.get(), &ContentView::openDocumentRequested, &delegate, &AppDelegate::openDocument);
    if (!file.isEmpty()) {
        NotificationCenter::defaultCenter().post(Notifications::openPDFDocument, pdf::fileURL(file));
    }
    window->resize(window->sizeHint().boundedTo(QApplication::primaryScreen()->availableSize()));
    window->show();
    const int status = QApplication::exec();

    // Nothing of the window is drawn or read any more while the last events are sent.
    window.reset();
    // Half a printed file is taken away by whoever writes it, which takes no time that anybody would notice.
    waitForRunningPrints(std::chrono::seconds(2));
    // First, because the last events may be sent for as long as it pleases the system.
    UserDefaults::standard().synchronize();
    delegate.applicationWillTerminate();
    std::fflush(nullptr);
    // A thread may be in the middle of a page that nobody will see, or of a text that nobody will search.
    // Whatever is to be kept is on disk, so the process does not wait for it.
    std::_Exit(status);
}
