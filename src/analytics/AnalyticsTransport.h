// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <optional>
#include <utility>

namespace quillo {

/// A POST request of the analytics service.
struct AnalyticsRequest
{
    QUrl url;
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;
    /// How long nothing may happen before the transfer counts as failed.
    std::chrono::milliseconds timeout{};
};

/// How a request ended: with an error, described for people, or with the status of an answer.
struct AnalyticsResponse
{
    std::optional<QString> error;
    std::optional<int> httpStatus;
};

/// Carries requests to their server.
class AnalyticsTransport
{
public:
    using Completion = std::function<void(const AnalyticsResponse&)>;

    virtual ~AnalyticsTransport() = default;

    /// Starts the request and returns at once. The completion is called once, on a thread of the transport's
    /// choice, whether or not the calling thread waits meanwhile.
    virtual void post(const AnalyticsRequest& request, Completion completion) = 0;
};

} // namespace quillo
