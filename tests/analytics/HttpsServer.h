// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "analytics/AnalyticsEvent.h"
#include "support/ChildProcess.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <vector>

namespace quillo {

/// A certificate authority of the moment, made with the openssl command and thrown away with its folder.
class TestAuthority
{
public:
    explicit TestAuthority(const QString& name);

    /// Issues a certificate for the host as NAME.pem and NAME.key.
    void issue(const QString& name, const QString& host) const;

    QString certificatePath(const QString& name) const
    {
        return m_folder.filePath(name + QStringLiteral(".pem"));
    }
    QString keyPath(const QString& name) const { return m_folder.filePath(name + QStringLiteral(".key")); }
    /// Makes every TLS connection of this process trust the authority.
    void trust() const;

private:
    QTemporaryDir m_folder;
};

/// A request as the server saw it.
struct ReceivedRequest
{
    QByteArray line;
    QString method;
    QString path;
    /// By lower-case name.
    QHash<QString, QString> headers;
    QByteArray body;
    QString answer;

    /// What the body says. Throws DecodingError.
    AnalyticsBatch batch() const;
};

/// A real HTTPS server in a process of its own, at https://localhost.
class HttpsServer
{
public:
    /// The certificate is one that the authority has issued; see https_server.py for the answers.
    HttpsServer(const TestAuthority& authority, const QString& certificate, const QStringList& answers);

    /// The address of the path "/events".
    QString endpoint() const;
    /// The requests so far; waits until there are as many as asked for.
    const std::vector<ReceivedRequest>& requests(std::size_t atLeast = 0);

private:
    ChildProcess m_process;
    QString m_port;
    std::vector<ReceivedRequest> m_requests;
};

} // namespace quillo
