// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/Race.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTextStream>

#include <algorithm>

namespace quillo::benchmark {

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

bool writeFile(const QString& path, const std::string& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) &&
           file.write(bytes.data(), qint64(bytes.size())) == qint64(bytes.size()) && file.flush();
}

bool runProgram(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

bool race(std::vector<Contestant>& contestants, int rounds)
{
    for (int round = -1; round < rounds; ++round) {
        for (Contestant& contestant : contestants) {
            QElapsedTimer timer;
            timer.start();
            if (!contestant.run()) {
                QTextStream(stderr) << contestant.name << " failed\n";
                return false;
            }
            if (round >= 0)
                contestant.milliseconds.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        }
    }
    return true;
}

void printRace(const std::vector<Contestant>& contestants)
{
    QTextStream out(stdout);
    const double yardstick = median(contestants.front().milliseconds);
    for (const Contestant& contestant : contestants) {
        const double time = median(contestant.milliseconds);
        out << qSetFieldWidth(32) << Qt::left << contestant.name << qSetFieldWidth(9) << Qt::right
            << QString::number(time, 'f', 1) << qSetFieldWidth(0) << " ms   "
            << QString::number(yardstick / time, 'f', 2) << " times as fast as the first\n";
    }
}

} // namespace quillo::benchmark
