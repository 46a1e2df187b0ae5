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
    const QString &path, const AnnouncedDaemon &daemon)
{
    const QJsonObject content{
        {u"pid"_s, daemon.pid},
        {daemon.portKey, daemon.port},
        {u"lsVersion"_s, daemon.version},
        {u"csrfToken"_s, daemon.token},
    };

    const auto directory = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(directory))
        return fail(u"cannot make the folder %1"_s.arg(directory));

    QSaveFile file(path);
    const bool written = file.open(QIODevice::WriteOnly)
        && file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner)
        && file.write(QJsonDocument(content).toJson()) > 0 && file.commit();
    if (!written)
        return fail(u"cannot write %1: %2"_s.arg(path, file.errorString()));
    return Announcement(path);
}

Announcement::Announcement(QString path)
    : m_path(std::move(path))
{
}

Announcement::~Announcement()
{
    end();
}

Announcement::Announcement(Announcement &&other) noexcept
    : m_path(std::exchange(other.m_path, {}))
{
}

Announcement &Announcement::operator=(Announcement &&other) noexcept
{
    if (this != &other) {
        end();
        m_path = std::exchange(other.m_path, {});
    }
    return *this;
}

void Announcement::end()
{
    if (!m_path.isEmpty())
        QFile::remove(m_path);
}

} // namespace brimwatch::sample
