// SPDX-License-Identifier: AGPL-3.0-or-later
#include "network/NetworkTransport.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QIODevice>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QObject>
#include <QSslConfiguration>

#include <algorithm>
#include <map>
#include <utility>

namespace quillo {
namespace {

// Answers are read in pieces and thrown away: only their status matters.
constexpr qint64 readBufferSize = 65'536;

class SystemProxies : public QNetworkProxyFactory
{
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override
    {
        return systemProxyForQuery(query);
    }
};

/// A request body that can be read once. Qt sends a request again by itself when its connection breaks before
/// the answer, and would deliver the same events twice; from such a body it cannot.
class OneTimeBody : public QIODevice
{
public:
    OneTimeBody(QByteArray bytes, QObject* parent)
        : QIODevice(parent)
        , m_bytes(std::move(bytes))
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }
    bool reset() override { return false; }
    qint64 bytesAvailable() const override { return m_bytes.size() - m_position; }
    bool atEnd() const override { return bytesAvailable() == 0; }

protected:
    qint64 readData(char* data, qint64 maximum) override
    {
        const qint64 count = std::min(maximum, m_bytes.size() - m_position);
        std::copy_n(m_bytes.constData() + m_position, count, data);
        m_position += count;
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    const QByteArray m_bytes;
    qint64 m_position = 0;
};

QNetworkRequest networkRequest(const AnalyticsRequest& request)
{
    QNetworkRequest result(request.url);
    // Without these Qt names the product it believes to be and the languages of the user.
    result.setRawHeader("User-Agent", "Quillo");
    result.setRawHeader("Accept-Language", "*");
    result.setRawHeader("Accept-Encoding", "identity");
    // Uploads are minutes apart.
    result.setRawHeader("Connection", "close");
    for (const auto& [name, value] : request.headers)
        result.setRawHeader(name, value);
    result.setHeader(QNetworkRequest::ContentLengthHeader, request.body.size());
    result.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    result.setTransferTimeout(static_cast<int>(request.timeout.count()));
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    result.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    result.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setPeerVerifyMode(QSslSocket::VerifyPeer);
    // A ticket would tie the uploads of one installation together.
    tls.setSslOption(QSsl::SslOptionDisableSessionTickets, true);
    result.setSslConfiguration(tls);
    return result;
}

AnalyticsResponse responseOf(const QNetworkReply& reply)
{
    // An answer counts by its status, even where Qt calls the status an error.
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    switch (reply.error()) {
    case QNetworkReply::NoError:
        return {std::nullopt, status.isValid() ? std::optional(status.toInt()) : std::nullopt};
    case QNetworkReply::OperationCanceledError:
        return {QObject::tr("The request timed out."), std::nullopt};
    default:
        if (reply.error() >= QNetworkReply::ContentAccessDenied && status.isValid())
            return {std::nullopt, status.toInt()};
        return {reply.errorString(), std::nullopt};
    }
}

} // namespace

/// The part that lives on the network's thread. An event wakes it to see what there is to do; neither a job
/// nor the end travels inside the event, but under the transport's own lock, which the thread sanitizer sees
/// and Qt's it does not.
class NetworkTransport::Worker : public QObject
{
public:
    explicit Worker(NetworkTransport& transport)
        : m_transport(transport)
    {}

    void work() { m_loop.exec(); }
    /// Any thread.
    void wake() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

protected:
    void customEvent(QEvent*) override
    {
        bool stopping = false;
        for (const Job& job : m_transport.takeJobs(stopping))
            send(job);
        if (stopping)
            m_loop.quit();
    }

private:
    void send(const Job& job)
    {
        // A manager sends one request after another over the same connection, and the server may close that
        // just when the next one is on its way. So each has a manager of its own, which goes with it.
        auto* manager = new QNetworkAccessManager(this);
        manager->setProxyFactory(new SystemProxies);
        auto* body = new OneTimeBody(job.request.body, this);
        QNetworkReply* reply = manager->post(networkRequest(job.request), body);
        body->setParent(reply);
        reply->setReadBufferSize(readBufferSize);
        connect(reply, &QIODevice::readyRead, reply, [reply] { reply->skip(reply->bytesAvailable()); });
        m_completions.emplace(reply, job.completion);
        connect(reply, &QNetworkReply::finished, this, [this, manager, reply] {
            finish(*reply);
            manager->deleteLater();
        });
    }

    void finish(const QNetworkReply& reply)
    {
        const auto place = m_completions.find(&reply);
        const Completion completion = std::move(place->second);
        m_completions.erase(place);
        completion(responseOf(reply));
    }

    NetworkTransport& m_transport;
    QEventLoop m_loop;
    /// Not kept by the connections to the replies: Qt may let go of those on a thread of its own.
    std::map<const QNetworkReply*, Completion> m_completions;
};

NetworkTransport::NetworkTransport() = default;

NetworkTransport::~NetworkTransport()
{
    {
        const std::lock_guard guard(m_mutex);
        m_stopping = true;
        if (m_worker != nullptr)
            m_worker->wake();
    }
    if (m_thread.joinable())
        m_thread.join();
}

void NetworkTransport::post(const AnalyticsRequest& request, Completion completion)
{
    const std::lock_guard guard(m_mutex);
    m_jobs.push_back({request, std::move(completion)});
    if (!m_thread.joinable())
        m_thread = std::thread([this] { run(); });
    else if (m_worker != nullptr)
        m_worker->wake();
}

void NetworkTransport::run()
{
    Worker worker(*this);
    {
        const std::lock_guard guard(m_mutex);
        m_worker = &worker;
    }
    // For what came before there was a worker to wake.
    worker.wake();
    worker.work();
    const std::lock_guard guard(m_mutex);
    m_worker = nullptr;
}

std::vector<NetworkTransport::Job> NetworkTransport::takeJobs(bool& stopping)
{
    const std::lock_guard guard(m_mutex);
    stopping = m_stopping;
    return std::exchange(m_jobs, {});
}

} // namespace quillo
