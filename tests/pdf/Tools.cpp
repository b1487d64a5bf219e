// SPDX-License-Identifier: AGPL-3.0-or-later
#include "Tools.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

QStringList programsAgainst(const QString& path)
{
    QStringList against;
    const auto ask = [&](const char* program, const QStringList& arguments) {
        const QString name = QString::fromUtf8(program);
        if (QStandardPaths::findExecutable(name).isEmpty())
            return;
        // Some seconds of processor time are enough for what is sound.
        const QString limited = QStringLiteral("ulimit -t 8; exec \"$@\"");
        const auto result = runTool(
            QStringLiteral("sh"),
            QStringList{QStringLiteral("-c"), limited, QStringLiteral("sh"), name} + arguments);
        if (result && result->exitCode != 0)
            against.append(name.section(u'/', -1));
    };
    ask("qpdf", {QStringLiteral("--check"), path});
    ask("pdfinfo", {path});
    ask("mutool", {QStringLiteral("info"), path});
    ask(QUILLO_PDFIUM, {path});
    return against;
}

QStringList programsLost(const QString& original, const QString& saved)
{
    QStringList lost = programsAgainst(saved);
    if (!lost.isEmpty()) {
        for (const QString& program : programsAgainst(original))
            lost.removeAll(program);
    }
    return lost;
}

std::optional<QImage> tryRenderingWith(Renderer renderer, const QString& path, int page, int scale)
{
    const QTemporaryDir folder;
    const QString picture = folder.filePath(QStringLiteral("page.png"));
    const QString number = QString::number(page + 1);
    const QString resolution = QString::number(72 * scale);
    std::optional<ToolResult> result;
    switch (renderer) {
    case Renderer::poppler:
        result = runTool(
            QStringLiteral("pdftoppm"),
            {QStringLiteral("-r"), resolution, QStringLiteral("-png"), QStringLiteral("-cropbox"),
             QStringLiteral("-singlefile"), QStringLiteral("-f"), number, path,
             folder.filePath(QStringLiteral("page"))});
        break;
    case Renderer::pdfium:
        result = runTool(QStringLiteral(QUILLO_PDFIUM), {path, picture, number, QString::number(scale)});
        break;
    case Renderer::mupdf:
        result = runTool(
            QStringLiteral("mutool"), {QStringLiteral("draw"), QStringLiteral("-r"), resolution,
                                       QStringLiteral("-o"), picture, path, number});
        break;
    }
    if (!result)
        return std::nullopt;
    return QImage(picture);
}

std::optional<QImage> renderWith(Renderer renderer, const QString& path, int page, int scale)
{
    auto image = tryRenderingWith(renderer, path, page, scale);
    EXPECT_FALSE(image && image->isNull()) << path.toStdString() << " cannot be drawn";
    return image;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        ADD_FAILURE() << path.toStdString() << " cannot be read";
        return {};
    }
    return file.readAll();
}
