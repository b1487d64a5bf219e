// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/HttpsServer.h"

#include "analytics/AnalyticsJson.h"
#include "analytics/Inflate.h"

#include <gtest/gtest.h>

#include <QSslConfiguration>

namespace quillo {
namespace {

void openssl(const QStringList& arguments)
{
    ChildProcess process(QStringLiteral("openssl"), arguments);
    EXPECT_EQ(process.waitForEnd(), 0) << "openssl failed";
}

QStringList newCertificate(const QString& key, const QString& certificate, const QString& name)
{
    return QStringList{
        QStringLiteral("req"),
        QStringLiteral("-x509"),
        QStringLiteral("-newkey"),
        QStringLiteral("ec"),
        QStringLiteral("-pkeyopt"),
        QStringLiteral("ec_paramgen_curve:P-256"),
        QStringLiteral("-nodes"),
        QStringLiteral("-days"),
        QStringLiteral("2"),
        QStringLiteral("-keyout"),
        key,
        QStringLiteral("-out"),
        certificate,
        QStringLiteral("-subj"),
        QStringLiteral("/CN=") + name};
}

ReceivedRequest parseRequest(const QByteArray& line)
{
    const Json value = parseJson(line);
    const JsonObjectReader reader(value, "request");
    ReceivedRequest request;
    request.line = line;
    request.method = reader.string("method");
    request.path = reader.string("path");
    for (const Json& header : reader.array("headers")) {
        const QString name = stringFromJson(header[0], "header").toLower();
        request.headers.insert(name, stringFromJson(header[1], "header"));
    }
    request.body = reader.base64("body");
    request.answer = reader.string("answer");
    return request;
}

} // namespace

TestAuthority::TestAuthority(const QString& name)
{
    openssl(newCertificate(
        keyPath(QStringLiteral("authority")), certificatePath(QStringLiteral("authority")), name));
}

void TestAuthority::issue(const QString& name, const QString& host) const
{
    QStringList arguments = newCertificate(keyPath(name), certificatePath(name), host);
    arguments << QStringLiteral("-CA") << certificatePath(QStringLiteral("authority"))
              << QStringLiteral("-CAkey") << keyPath(QStringLiteral("authority")) << QStringLiteral("-addext")
              << QStringLiteral("subjectAltName=DNS:") + host << QStringLiteral("-addext")
              << QStringLiteral("basicConstraints=critical,CA:FALSE");
    openssl(arguments);
}

void TestAuthority::trust() const
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.addCaCertificates(certificatePath(QStringLiteral("authority")));
    QSslConfiguration::setDefaultConfiguration(configuration);
}

AnalyticsBatch ReceivedRequest::batch() const
{
    return analyticsBatchFromJson(parseJson(inflated(body)));
}

HttpsServer::HttpsServer(
    const TestAuthority& authority, const QString& certificate, const QStringList& answers)
    : m_process(
          QStringLiteral("python3"),
          QStringList{
              QStringLiteral(QUILLO_SOURCE_DIR "/tests/analytics/https_server.py"),
              authority.certificatePath(certificate), authority.keyPath(certificate)} +
              answers)
    , m_port(QString::fromLatin1(m_process.readLine().value_or(QByteArray())))
{
    EXPECT_FALSE(m_port.isEmpty()) << "the server has not started";
}

QString HttpsServer::endpoint() const
{
    return QStringLiteral("https://localhost:%1/events").arg(m_port);
}

const std::vector<ReceivedRequest>& HttpsServer::requests(std::size_t atLeast)
{
    while (m_requests.size() < atLeast) {
        const auto line = m_process.readLine();
        if (!line)
            break;
        m_requests.push_back(parseRequest(*line));
    }
    while (const auto line = m_process.readLine(std::chrono::milliseconds(0)))
        m_requests.push_back(parseRequest(*line));
    EXPECT_GE(m_requests.size(), atLeast) << "requests that never came";
    return m_requests;
}

} // namespace quillo
