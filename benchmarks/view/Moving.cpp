// SPDX-License-Identifier: AGPL-3.0-or-later
#include "view/Moving.h"

#include "pdf/PDFAnnotation.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdfview/PDFView.h"
#include "support/Race.h"
#include "view/Subject.h"
#include "writer/Document.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <vector>

namespace quillo::benchmark {
namespace {

constexpr int moves = 180;
constexpr std::chrono::milliseconds frame(16);
constexpr int patience = 20'000;
constexpr QSizeF stampSize(200, 80);

/// A page full of small squares, each an annotation with an appearance of its own.
std::string makeAnnotated(int count)
{
    samples::Document document({"Annotated page", "Reviewer", "en"});
    samples::Page& page = document.addPage(samples::letter);
    const int columns = std::max(1, static_cast<int>(std::sqrt(count * page.size.width / page.size.height)));
    const double pitch = page.size.width / columns;
    const std::string side = samples::number(pitch * 0.7);
    const std::string square = side + ' ' + side;
    for (int i = 0; i < count; ++i) {
        const int row = i / columns;
        const double x = pitch * (i % columns);
        const double y = pitch * row;
        const auto picture = document.file().addStream(
            "/Type/XObject/Subtype/Form/BBox[0 0 " + square + ']',
            samples::number(i % 7 / 7.0) + " 0.5 0.8 rg 0 0 " + square + " re f",
            samples::PdfFile::Compression::none);
        page.annotations.push_back(document.file().add(
            "<</Type/Annot/Subtype/Square/F 4/Rect" +
            samples::numbers({x, y, x + pitch * 0.7, y + pitch * 0.7}) + "/AP<</N " +
            samples::reference(picture) + ">>>>"));
    }
    return document.finish();
}

double millisecondsOf(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

QString shown(double value)
{
    return QString::number(value, 'f', 2);
}

double percentile(std::vector<double> values, double part)
{
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
}

/// Moves one annotation of a page that is in view.
class Mover
{
public:
    Mover(pdf::PDFView& view, std::shared_ptr<pdf::PDFAnnotation> annotation)
        : m_view(view)
        , m_annotation(std::move(annotation))
        , m_size(m_annotation->bounds().size())
    {}

    void move()
    {
        const double way = 150.0 * (1.0 + std::sin(++m_step / 20.0));
        m_annotation->setBounds({QPointF(40.0 + way, 450.0 + way / 2.0), m_size});
        m_view.refreshAnnotations(0);
    }

    /// False when it is not shown within the patience of a benchmark.
    bool waitUntilPainted()
    {
        const QDeadlineTimer deadline(patience);
        while (!m_view.isSharp()) {
            if (deadline.hasExpired())
                return false;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        m_view.viewport()->repaint();
        return true;
    }

private:
    pdf::PDFView& m_view;
    const std::shared_ptr<pdf::PDFAnnotation> m_annotation;
    const QSizeF m_size;
    int m_step = 0;
};

/// The times from a move to the painted frame, each move as soon as the last one is shown.
std::vector<double> moveAndWait(Mover& mover)
{
    std::vector<double> times;
    for (int i = 0; i < moves; ++i) {
        QElapsedTimer timer;
        timer.start();
        mover.move();
        if (!mover.waitUntilPainted())
            return {};
        times.push_back(millisecondsOf(timer));
    }
    return times;
}

/// How many of the moves were caught up with when there is one in each frame.
int moveSteadily(pdf::PDFView& view, Mover& mover)
{
    int shownMoves = 0;
    int step = 0;
    QEventLoop loop;
    const auto connection = QObject::connect(
        &view, &pdf::PDFView::annotationsRefreshed, &view, [&] { shownMoves += step > 0 ? 1 : 0; });
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &view, [&] {
        if (step == moves) {
            loop.quit();
            return;
        }
        ++step;
        mover.move();
    });
    timer.start(frame);
    loop.exec();
    QObject::disconnect(connection);
    return shownMoves;
}

bool measureOne(pdf::PDFView& view, const std::shared_ptr<pdf::PDFAnnotation>& annotation, const char* name)
{
    Mover mover(view, annotation);
    QElapsedTimer timer;
    timer.start();
    mover.move();
    if (!mover.waitUntilPainted())
        return false;
    const double first = millisecondsOf(timer);
    const auto times = moveAndWait(mover);
    if (times.empty())
        return false;
    const int caughtUp = moveSteadily(view, mover);
    QTextStream(stdout) << "    moving " << name << " to its painted frame: first " << shown(first)
                        << " ms, then median " << shown(median(times)) << " ms, 95th percentile "
                        << shown(percentile(times, 0.95)) << " ms; at a move each 16 ms " << caughtUp
                        << " of " << moves << " were shown in time\n";
    return mover.waitUntilPainted();
}

} // namespace

bool measureMoving(const QString& folder, int annotationCount)
{
    const Subject subject = {
        QStringLiteral("Annotated"), folder + QStringLiteral("/annotated-%1.pdf").arg(annotationCount), 1};
    if (!writeFile(subject.path, makeAnnotated(annotationCount)))
        return false;
    const auto view = show(subject);
    if (!view)
        return false;
    const auto page = view->document()->page(0);
    QElapsedTimer timer;
    timer.start();
    const auto found = page->annotations();
    const double first = millisecondsOf(timer);
    timer.start();
    const auto again = page->annotations();
    QTextStream(stdout) << found.size() << " annotations:\n    listing them " << shown(first)
                        << " ms, once more " << shown(millisecondsOf(timer)) << " ms\n";
    if (found.size() != static_cast<std::size_t>(annotationCount) || again != found)
        return false;

    const auto stamp = std::make_shared<pdf::PDFAnnotation>(
        QRectF(QPointF(40, 450), stampSize), pdf::PDFAnnotation::Subtype::stamp);
    stamp->setContents(QStringLiteral("Approved"));
    page->addAnnotation(stamp);
    view->refreshAnnotations(0);
    return waitUntilSharp(*view) && measureOne(*view, stamp, "the topmost") &&
           measureOne(*view, found[found.size() / 2], "one in the middle");
}

} // namespace quillo::benchmark
