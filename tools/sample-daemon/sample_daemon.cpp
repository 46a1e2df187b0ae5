#include "sample_daemon.h"

#include <QAbstractHttpServer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>

#include <array>
#include <iostream>

namespace brimwatch::sample {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Hands every request to the answers as it is, whatever its path: what is wrong with it is theirs
/// to say.
class Front final : public QAbstractHttpServer {
public:
    explicit Front(Answers &answers)
        : m_answers(answers)
    {
    }

protected:
    bool handleRequest(const QHttpServerRequest &request, QTcpSocket *socket) override
    {
        m_answers.answer(request, makeResponder(request, socket));
        return true;
    }

    void missingHandler(const QHttpServerRequest &request, QTcpSocket *socket) override
    {
        m_answers.answer(request, makeResponder(request, socket));
    }

private:
    Answers &m_answers;
};

/// Counts who connects before anything is said, so that a failed TLS handshake counts too.
template <typename Server> class Counting final : public Server {
public:
    explicit Counting(Answers &answers)
        : m_answers(answers)
    {
    }

protected:
    void incomingConnection(qintptr descriptor) override
    {
        m_answers.countConnection();
        Server::incomingConnection(descriptor);
    }

private:
    Answers &m_answers;
};

QString randomToken()
{
    std::array<quint32, 8> random{};
    QRandomGenerator::system()->fillRange(random.data(), qsizetype(random.size()));
    return QString::fromLatin1(
        QByteArray(reinterpret_cast<const char *>(random.data()), sizeof random).toHex());
}

Result<QByteArray, QString> contentOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(u"cannot read %1: %2"_s.arg(path, file.errorString()));
    return file.readAll();
}

QSslKey privateKey(const QByteArray &pem)
{
    for (const auto algorithm : {QSsl::Ec, QSsl::Rsa}) {
        QSslKey key(pem, algorithm);
        if (!key.isNull())
            return key;
    }
    return {};
}

} // namespace

SampleDaemon::SampleDaemon(const Options &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_answers(options)
{
    // Queued: the answer is still being written, and by a server that is about to go.
    connect(
        &m_answers, &Answers::moveDue, this,
        [this] {
            if (const auto moved = move(); !moved)
                Q_EMIT failed(moved.error());
        },
        Qt::QueuedConnection);
}

Result<void, QString> SampleDaemon::start()
{
    if (m_options.summaryFile && !QFileInfo(*m_options.summaryFile).isReadable())
        return fail(u"cannot read %1"_s.arg(*m_options.summaryFile));
    return listenAll(m_options.httpPort, m_options.httpsPort).and_then([this] {
        return announce();
    });
}

Result<void, QString> SampleDaemon::move()
{
    ++m_moves;
    m_announcement.reset();

    // The new ports are opened while the old ones still are: the system then cannot give the same
    // ones again.
    auto http = std::exchange(m_http, {});
    auto https = std::exchange(m_https, {});
    auto listening = listenAll(0, 0);
    for (auto *old : {&http, &https}) {
        if (!*old)
            continue;
        auto &server = (*old)->server;
        for (auto *listener : server->findChildren<QTcpServer *>())
            listener->close();
        // What was answered still goes out; who has nothing coming is cut off.
        for (auto *socket : server->findChildren<QTcpSocket *>()) {
            socket->disconnectFromHost();
        }
        server.release()->setParent(this);
    }
    return listening.and_then([this] { return announce(); });
}

Result<void, QString> SampleDaemon::listenAll(quint16 httpPort, quint16 httpsPort)
{
    if (m_options.http) {
        auto listening = listen(std::make_unique<Counting<QTcpServer>>(m_answers), httpPort);
        if (!listening)
            return fail(listening.error());
        m_http = std::move(*listening);
    }
    if (m_options.https) {
        const auto configuration = tlsConfiguration();
        if (!configuration)
            return fail(configuration.error());
        auto server = std::make_unique<Counting<QSslServer>>(m_answers);
        server->setSslConfiguration(*configuration);
        auto listening = listen(std::move(server), httpsPort);
        if (!listening)
            return fail(listening.error());
        m_https = std::move(*listening);
    }
    return {};
}

Result<SampleDaemon::Listening, QString> SampleDaemon::listen(
    std::unique_ptr<QTcpServer> server, quint16 port)
{
    if (!server->listen(QHostAddress::LocalHost, port))
        return fail(u"cannot listen on port %1: %2"_s.arg(port).arg(server->errorString()));
    const auto actualPort = server->serverPort();
    auto front = std::make_unique<Front>(m_answers);
    front->bind(server.release()); // Which makes it a child of the front.
    return Listening{.server = std::move(front), .port = actualPort};
}

Result<QSslConfiguration, QString> SampleDaemon::tlsConfiguration() const
{
    const auto certificates = contentOf(m_options.certificateFile);
    const auto key = contentOf(m_options.keyFile);
    if (!certificates)
        return fail(certificates.error());
    if (!key)
        return fail(key.error());

    const auto chain = QSslCertificate::fromData(*certificates, QSsl::Pem);
    if (chain.isEmpty())
        return fail(u"there is no certificate in %1"_s.arg(m_options.certificateFile));
    const auto decodedKey = privateKey(*key);
    if (decodedKey.isNull())
        return fail(u"there is no private key in %1"_s.arg(m_options.keyFile));

    auto configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificateChain(chain);
    configuration.setPrivateKey(decodedKey);
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone); // Callers have no certificate.
    return configuration;
}

Result<void, QString> SampleDaemon::announce()
{
    const AnnouncedDaemon daemon{
        .pid = m_options.pid.value_or(QCoreApplication::applicationPid()),
        .httpPort = m_http ? std::optional(m_http->port) : std::nullopt,
        .httpsPort = m_https ? std::optional(m_https->port) : std::nullopt,
        .version = u"1.0.0-sample"_s,
        .token = m_options.token ? *m_options.token : randomToken(),
    };
    m_answers.setToken(daemon.token.toUtf8());

    const auto atEnd
        = m_options.leaveFile ? Announcement::AtEnd::Leave : Announcement::AtEnd::Remove;
    auto written = Announcement::write(filePath(), daemon, atEnd);
    if (!written)
        return fail(written.error());
    m_announcement = std::move(*written);

    std::cout << "ready";
    if (daemon.httpPort)
        std::cout << " http=" << *daemon.httpPort;
    if (daemon.httpsPort)
        std::cout << " https=" << *daemon.httpsPort;
    std::cout << " file=" << m_announcement->path().toStdString() << " pid=" << daemon.pid << '\n'
              << std::flush;
    return {};
}

QString SampleDaemon::filePath() const
{
    const auto pid = m_options.pid.value_or(QCoreApplication::applicationPid());
    auto name = m_options.fileName.value_or(u"ls_%1.json"_s.arg(pid));
    if (m_moves > 0) {
        const auto dot = name.lastIndexOf(u'.');
        name.insert(dot < 0 ? name.size() : dot, u"_%1"_s.arg(m_moves + 1));
    }
    return QDir(m_options.directory).absoluteFilePath(name);
}

} // namespace brimwatch::sample
