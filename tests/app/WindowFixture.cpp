// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/WindowFixture.h"

#include "document/DocumentState.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "support/Widgets.h"

#include <QLabel>

namespace quillo {

void WindowFixture::show()
{
    m_window = std::make_unique<ContentView>(m_analytics.service());
    m_window->resize(1200, 800);
    m_window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return visibleButton(*m_window, QStringLiteral("Toggle Sidebar")) != nullptr; }));
}

void WindowFixture::post(const QVariant& object)
{
    NotificationCenter::defaultCenter().post(Notifications::openPDFDocument, object);
}

QUrl WindowFixture::documentOf(int pageCount, const QString& name) const
{
    PDFWriter writer;
    for (int page = 0; page < pageCount; ++page)
        writer.addPage(showText(72, 700, "Page " + QByteArray::number(page + 1)));
    return QUrl::fromLocalFile(m_folder.write(name, writer.bytes()));
}

QUrl WindowFixture::sample(const QString& name)
{
    return QUrl::fromLocalFile(QStringLiteral(QUILLO_SOURCE_DIR "/samples/") + name);
}

bool WindowFixture::hasText() const
{
    return QTest::qWaitFor([&] { return !state().pageTexts()->empty(); }, 10000);
}

QString WindowFixture::label(const QString& name) const
{
    for (const auto* found : m_window->findChildren<QLabel*>()) {
        if (found->accessibleName() == name)
            return found->text();
    }
    return {};
}

bool WindowFixture::labelBecomes(const QString& name, const QString& text) const
{
    return QTest::qWaitFor([&] { return label(name) == text; }, 10000);
}

} // namespace quillo
