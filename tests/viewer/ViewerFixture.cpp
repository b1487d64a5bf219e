// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/ViewerFixture.h"

#include "support/ToolRun.h"
#include "support/Widgets.h"

#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

namespace quillo {

QUrl ViewerFixture::documentOf(int pageCount, const QString& name)
{
    PDFWriter writer;
    for (int page = 0; page < pageCount; ++page)
        writer.addPage(showText(72, 700, "Page " + QByteArray::number(page + 1)));
    return QUrl::fromLocalFile(m_folder.write(name, writer.bytes()));
}

QUrl ViewerFixture::encryptedDocument(const QString& password, const QString& name)
{
    const QString plain = documentOf(2, QStringLiteral("plain.pdf")).toLocalFile();
    const QString encrypted = m_folder.path(name);
    EXPECT_EQ(
        runTool(
            QStringLiteral("qpdf"), {QStringLiteral("--encrypt"), password, QStringLiteral("owner"),
                                     QStringLiteral("256"), QStringLiteral("--"), plain, encrypted})
            .value_or(ToolResult())
            .exitCode,
        0);
    return QUrl::fromLocalFile(encrypted);
}

QUrl ViewerFixture::formDocument(const QString& name)
{
    PDFWriter writer;
    const int field = writer.add(
        "<</Type/Annot/Subtype/Widget/FT/Tx/T(name)/F 4/DA(/Helv 12 Tf 0 g)/Rect[100 650 400 680]>>");
    writer.addPage({}, "/Annots[" + QByteArray::number(field) + " 0 R]");
    writer.setCatalog("/AcroForm<</Fields[" + QByteArray::number(field) + " 0 R]>>");
    return QUrl::fromLocalFile(m_folder.write(name, writer.bytes()));
}

void ViewerFixture::show()
{
    m_viewer = std::make_unique<PDFViewer>(&m_state, m_analytics.service());
    m_viewer->resize(800, 700);
    m_viewer->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_viewer.get()));
    // The toolbar is filled after the first frame.
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return visibleButton(*m_viewer, QStringLiteral("Zoom in")) != nullptr; }));
}

void ViewerFixture::open(const QUrl& url)
{
    QSignalSpy resolved(m_viewer.get(), &PDFViewer::documentResolved);
    m_state.setUrl(url);
    ASSERT_TRUE(resolved.wait(10000));
}

void ViewerFixture::showDocument(int pageCount)
{
    show();
    m_state.setTotalPages(pageCount);
    open(documentOf(pageCount));
}

QLineEdit* ViewerFixture::editField()
{
    m_viewer->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(m_viewer.get()));
    QLineEdit* editor = nullptr;
    EXPECT_TRUE(QTest::qWaitFor([&] {
        const auto toView = view().pageToView(0);
        if (toView)
            QTest::mouseClick(
                view().viewport(), Qt::LeftButton, {}, toView->map(QPointF(250, 665)).toPoint());
        editor = view().viewport()->findChild<QLineEdit*>();
        return editor != nullptr;
    }));
    return editor;
}

pdf::PDFView& ViewerFixture::view() const
{
    return *m_viewer->findChild<pdf::PDFView*>();
}

QString ViewerFixture::label(const QString& name) const
{
    for (const auto* found : m_viewer->findChildren<QLabel*>()) {
        if (found->accessibleName() == name)
            return found->text();
    }
    return {};
}

} // namespace quillo
