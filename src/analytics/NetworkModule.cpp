// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/NetworkModule.h"

#include <QCoreApplication>
#include <QLibrary>

#include <utility>

namespace quillo {

NetworkModule::NetworkModule(QString folder)
    : m_folder(std::move(folder))
{}

NetworkModule& NetworkModule::shared()
{
    static NetworkModule* const module = [] {
        // The thread of the network must not run on while the process takes its libraries apart.
        qAddPostRoutine([] { shared().m_transport.reset(); });
        return new NetworkModule(QCoreApplication::applicationDirPath());
    }();
    return *module;
}

void NetworkModule::post(const AnalyticsRequest& request, Completion completion)
{
    if (!m_transport) {
        QLibrary library(m_folder + QStringLiteral("/quillo-network"));
        const auto make = reinterpret_cast<decltype(&quilloMakeNetworkTransport)>(
            library.resolve("quilloMakeNetworkTransport"));
        if (make == nullptr) {
            completion({library.errorString(), std::nullopt});
            return;
        }
        m_transport.reset(make());
    }
    m_transport->post(request, std::move(completion));
}

} // namespace quillo
