// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/WebAddresses.h"

namespace quillo::WebAddresses {

QString collectionEndpoint()
{
    return qEnvironmentVariable("QUILLO_ANALYTICS_ENDPOINT", QStringLiteral(QUILLO_ANALYTICS_ENDPOINT));
}

} // namespace quillo::WebAddresses
