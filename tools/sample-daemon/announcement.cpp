#include "announcement.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <utility>

namespace brimwatch::sample {

using namespace Qt::Literals::StringLiterals;

Result<Announcement, QString> Announcement::write(
    const QString &path, const AnnouncedDaemon &daemon, AtEnd atEnd)
{
    QJsonObject content{
        {u"pid"_s, daemon.pid},
        {u"lsVersion"_s, daemon.version},
        {u"csrfToken"_s, daemon.token},
    };
    if (daemon.httpPort)
        content.insert(u"httpPort"_s, *daemon.httpPort);
    if (daemon.httpsPort)
        content.insert(u"httpsPort"_s, *daemon.httpsPort);

    const auto directory = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(directory))
        return fail(u"cannot make the folder %1"_s.arg(directory));

    QSaveFile file(path);
    const bool written = file.open(QIODevice::WriteOnly)
        && file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner)
        && file.write(QJsonDocument(content).toJson()) > 0 && file.commit();
    if (!written)
        return fail(u"cannot write %1: %2"_s.arg(path, file.errorString()));
    return Announcement(path, atEnd);
}

Announcement::Announcement(QString path, AtEnd atEnd)
    : m_path(std::move(path))
    , m_atEnd(atEnd)
{
}

Announcement::~Announcement()
{
    end();
}

Announcement::Announcement(Announcement &&other) noexcept
    : m_path(std::exchange(other.m_path, {}))
    , m_atEnd(other.m_atEnd)
{
}

Announcement &Announcement::operator=(Announcement &&other) noexcept
{
    if (this != &other) {
        end();
        m_path = std::exchange(other.m_path, {});
        m_atEnd = other.m_atEnd;
    }
    return *this;
}

void Announcement::end()
{
    if (!m_path.isEmpty() && m_atEnd == AtEnd::Remove)
        QFile::remove(m_path);
}

} // namespace brimwatch::sample
