// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/BundleInfo.h"

#include <array>
#include <utility>

namespace quillo::BundleInfo {
namespace {

constexpr std::array<std::pair<QStringView, QStringView>, 3> values{{
    {u"CFBundleName", u"Quillo"},
    {u"CFBundleShortVersionString", u"1.0.0"},
    {u"CFBundleVersion", u"1"},
}};

} // namespace

std::optional<QString> informationValue(QStringView key)
{
    for (const auto& [name, value] : values) {
        if (name == key)
            return value.toString();
    }
    return std::nullopt;
}

} // namespace quillo::BundleInfo
