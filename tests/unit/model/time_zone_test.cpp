#include "core/clock.h"
#include "model/quota_records.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace brimwatch {

namespace {

bool write(const char *path, const QByteArray &text)
{
    QFile file(QString::fromLatin1(path));
    return file.open(QFile::WriteOnly) && file.write(text) == text.size();
}

/// Puts the folder in the place of /etc for this process alone. False where the machine gives
/// nobody a view of its own of the file system.
bool takeForEtc(const QByteArray &folder)
{
    const uid_t user = getuid();
    const gid_t group = getgid();
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
            return false;
        if (!write("/proc/self/setgroups", "deny")
            || !write("/proc/self/uid_map", "0 " + QByteArray::number(user) + " 1")
            || !write("/proc/self/gid_map", "0 " + QByteArray::number(group) + " 1"))
            return false;
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && mount(folder.constData(), "/etc", nullptr, MS_BIND, nullptr) == 0;
}

bool hasOwnEtc = false;

/// As the desktops' settings do it: by a link that takes the place of the one before.
void moveTo(const char *zone)
{
    const QString link = QStringLiteral("/etc/localtime.new");
    QVERIFY(QFile::exists(QStringLiteral("/usr/share/zoneinfo/") + QLatin1StringView(zone)));
    QVERIFY(QFile::link(QStringLiteral("/usr/share/zoneinfo/") + QLatin1StringView(zone), link));
    QCOMPARE(std::rename(qPrintable(link), "/etc/localtime"), 0);
}

} // namespace

class TimeZoneTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aNewTimeZoneIsFollowedWithoutANewStart();
};

void TimeZoneTest::initTestCase()
{
    if (!hasOwnEtc)
        QSKIP("the kernel lets no process mount an /etc of its own here");
}

void TimeZoneTest::aNewTimeZoneIsFollowedWithoutANewStart()
{
    const SystemClock clock;
    model::QuotaBucket bucket;
    // Neither zone has another time in summer.
    bucket.resetTime = QStringLiteral("2020-01-15T20:30:00Z");
    const auto hourAndOffset = [&] {
        const QDateTime now = clock.now();
        return std::pair(bucket.formattedResetTimestamp(now), now.offsetFromUtc() / 60);
    };

    moveTo("Asia/Kolkata");
    const auto [kolkata, east] = hourAndOffset();
    QCOMPARE(east, 330);
    QVERIFY2(kolkata->contains(QStringLiteral("2:00")), qPrintable(*kolkata));

    moveTo("America/Phoenix");
    const auto [phoenix, west] = hourAndOffset();
    QCOMPARE(west, -420);
    QVERIFY2(phoenix->contains(QStringLiteral("1:30")), qPrintable(*phoenix));
}

} // namespace brimwatch

int main(int argc, char **argv)
{
    // Before anything has threads, or has asked for the time.
    qunsetenv("TZ");
    QTemporaryDir etc;
    if (etc.isValid())
        brimwatch::hasOwnEtc = brimwatch::takeForEtc(QFile::encodeName(etc.path()));
    const QCoreApplication application(argc, argv);
    brimwatch::TimeZoneTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "time_zone_test.moc"
