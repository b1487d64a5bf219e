// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFLink.h"

#include <QUrlQuery>

#include <algorithm>

namespace pdf {
namespace {

bool isWebAddress(const QUrl& url)
{
    return (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https")) &&
           !url.host().isEmpty();
}

/// Mail programs know fields that put files of the user's into the letter.
bool isHarmlessLetter(const QUrl& url)
{
    if (url.scheme() != QLatin1String("mailto"))
        return false;
    const auto items = QUrlQuery(url).queryItems(QUrl::FullyDecoded);
    return std::none_of(items.begin(), items.end(), [](const auto& item) {
        return item.first.trimmed().startsWith(QLatin1String("attach"), Qt::CaseInsensitive);
    });
}

} // namespace

std::optional<QUrl> linkAddress(const QByteArray& address, const QByteArray& base)
{
    const QByteArray trimmed = address.trimmed();
    const bool hasControls = std::any_of(trimmed.begin(), trimmed.end(), [](char byte) {
        return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
    });
    if (hasControls)
        return std::nullopt;
    QUrl url = QUrl::fromEncoded(trimmed, QUrl::TolerantMode);
    if (url.isRelative() && !base.isEmpty())
        url = QUrl::fromEncoded(base.trimmed(), QUrl::TolerantMode).resolved(url);
    if (!url.isValid() || (!isWebAddress(url) && !isHarmlessLetter(url)))
        return std::nullopt;
    return url;
}

} // namespace pdf
