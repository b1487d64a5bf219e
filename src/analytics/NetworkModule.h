// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "analytics/AnalyticsTransport.h"

#include <QString>

#include <memory>

namespace quillo {

/// Carries requests over the network. What does so is a module beside the program that is loaded with the
/// first request; until then nothing of the network costs anything. Main thread only.
class NetworkModule : public AnalyticsTransport
{
public:
    /// The module is looked for in the folder.
    explicit NetworkModule(QString folder);

    /// The module beside the running program, never destroyed; what is on its way when the application object
    /// goes is dropped then. Needs an application object.
    static NetworkModule& shared();

    /// A module that cannot be loaded completes the request with an error at once.
    void post(const AnalyticsRequest& request, Completion completion) override;

private:
    const QString m_folder;
    std::unique_ptr<AnalyticsTransport> m_transport;
};

} // namespace quillo

/// The module's one entry point.
extern "C" Q_DECL_EXPORT quillo::AnalyticsTransport* quilloMakeNetworkTransport();
