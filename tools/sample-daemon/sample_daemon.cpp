#include "sample_daemon.h"

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

/// Counts connections before the TLS handshake, so that one whose handshake fails counts too.
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
}

Result<void, QString> SampleDaemon::start()
{
    if (m_options.summaryFile && !QFileInfo(*m_options.summaryFile).isReadable())
        return fail(u"cannot read %1"_s.arg(*m_options.summaryFile));
    return listen().and_then([this] { return announce(); });
}

Result<void, QString> SampleDaemon::move()
{
    ++m_moves;
    m_announcement.reset();

    // The new port is opened while the old one still is: the system then cannot give the same one
    // again.
    auto *old = m_server.release();
    const auto listening = listen();
    old->setParent(this);
    old->close();
    // Answers that are on their way still arrive; callers who wait for one are cut off.
    const auto sockets = old->findChildren<QTcpSocket *>();
    for (auto *socket : sockets)
        socket->disconnectFromHost();
    return listening.and_then([this] { return announce(); });
}

Result<void, QString> SampleDaemon::listen()
{
    if (m_options.https) {
        const auto configuration = tlsConfiguration();
        if (!configuration)
            return fail(configuration.error());
        auto server = std::make_unique<Counting<QSslServer>>(m_answers);
        server->setSslConfiguration(*configuration);
        m_server = std::move(server);
    } else {
        m_server = std::make_unique<Counting<QTcpServer>>(m_answers);
    }
    if (!m_server->listen(QHostAddress::LocalHost))
        return fail(u"cannot listen: %1"_s.arg(m_server->errorString()));
    connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, this,
        [this, server = m_server.get()] {
            while (auto *socket = server->nextPendingConnection())
                m_answers.serve(socket);
        });
    return {};
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
        .pid = QCoreApplication::applicationPid(),
        .portKey = m_options.https ? u"httpsPort"_s : u"httpPort"_s,
        .port = m_server->serverPort(),
        .version = u"1.0.0-sample"_s,
        .token = m_options.token ? *m_options.token : randomToken(),
    };
    m_answers.setToken(daemon.token.toUtf8());

    auto written = Announcement::write(filePath(), daemon);
    if (!written)
        return fail(written.error());
    m_announcement = std::move(*written);

    std::cout << "ready " << (m_options.https ? "https=" : "http=") << daemon.port
              << " file=" << m_announcement->path().toStdString() << " pid=" << daemon.pid << '\n'
              << std::flush;
    return {};
}

QString SampleDaemon::filePath() const
{
    const auto pid = QCoreApplication::applicationPid();
    auto name = m_options.fileName.value_or(u"ls_%1.json"_s.arg(pid));
    if (m_moves > 0) {
        const auto dot = name.lastIndexOf(u'.');
        name.insert(dot < 0 ? name.size() : dot, u"_%1"_s.arg(m_moves + 1));
    }
    return QDir(m_options.directory).absoluteFilePath(name);
}

} // namespace brimwatch::sample
