// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/NetworkModule.h"
#include "network/NetworkTransport.h"

// What the program calls after it has loaded this module.
extern "C" Q_DECL_EXPORT quillo::AnalyticsTransport* quilloMakeNetworkTransport()
{
    return new quillo::NetworkTransport;
}
