#include "discovery/daemon_discovery_service.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <functional>
#include <limits>
#include <memory>
#include <utility>

namespace brimwatch::discovery {

using namespace Qt::Literals::StringLiterals;

namespace {

// 16 November 2026, 09:00:00 UTC
constexpr qint64 nine = 1794819600;

/// A home with an empty discovery directory that everyone may enter and write to.
class Home {
public:
    Home()
    {
        if (!m_directory.isValid() || !QDir().mkpath(discovery()))
            qFatal("no temporary directory");
        for (QString path = discovery(); path.size() >= m_directory.path().size();
            path = path.left(path.lastIndexOf(u'/'))) {
            if (::chmod(QFile::encodeName(path).constData(), 0777) != 0)
                qFatal("the temporary directory cannot be opened to others");
        }
    }

    QString path() const { return m_directory.path(); }
    QString discovery() const { return m_directory.path() + u"/.gemini/antigravity/daemon"; }
    QByteArray encoded(const QByteArray &name) const
    {
        return QFile::encodeName(discovery()) + '/' + name;
    }

    void write(const QByteArray &name, const QByteArray &content, qint64 seconds = nine,
        long nanoseconds = 0) const
    {
        const QByteArray path = encoded(name);
        const int file = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (file < 0
            || ::write(file, content.constData(), static_cast<std::size_t>(content.size()))
                != content.size())
            qFatal("%s cannot be written", path.constData());
        ::close(file);
        touch(name, seconds, nanoseconds);
    }

    void touch(const QByteArray &name, qint64 seconds, long nanoseconds = 0, int flags = 0) const
    {
        const struct timespec time = {.tv_sec = seconds, .tv_nsec = nanoseconds};
        const std::array times{time, time};
        if (::utimensat(AT_FDCWD, encoded(name).constData(), times.data(), flags) != 0)
            qFatal("%s cannot be dated", name.constData());
    }

    void link(const QByteArray &target, const QByteArray &name) const
    {
        if (::symlink(target.constData(), encoded(name).constData()) != 0)
            qFatal("%s cannot be linked", name.constData());
    }

private:
    QTemporaryDir m_directory;
};

QByteArray announcing(qint64 pid)
{
    return "{\"pid\":" + QByteArray::number(pid) + ",\"httpPort\":8080}";
}

QByteArray announcingUs()
{
    return announcing(::getpid());
}

/// A pid that was someone's a moment ago.
qint64 deadPid()
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    ::waitpid(child, nullptr, 0);
    return child;
}

QStringList namesOf(const QList<DaemonInfo> &infos)
{
    QStringList names;
    for (const auto &info : infos) {
        const QString path = info.filePath.value_or(u"none"_s);
        names.append(path.mid(path.lastIndexOf(u'/') + 1));
    }
    return names;
}

QStringList discovered(const Home &home)
{
    return namesOf(DaemonDiscoveryService(home.path()).discoverDaemons());
}

struct Ending {
    int status = 0;
    QByteArray output; ///< Standard output and error.
};

/// Runs `work` in a child process, with what it writes to its standard output and error caught.
Ending inChild(const std::function<void()> &work)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        qFatal("no pipe");
    const pid_t child = ::fork();
    if (child == 0) {
        // Qt Test would draw a backtrace of a death that is expected, and the system keep a core of
        // it.
        std::signal(SIGABRT, SIG_DFL);
        const struct rlimit none = {};
        ::setrlimit(RLIMIT_CORE, &none);
        qInstallMessageHandler(nullptr);
        ::dup2(ends[1], STDOUT_FILENO);
        ::dup2(ends[1], STDERR_FILENO);
        work();
        ::_exit(0);
    }
    ::close(ends[1]);
    QFile reader;
    if (!reader.open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        qFatal("no pipe to read from");
    Ending ending{.status = 0, .output = reader.readAll()};
    ::waitpid(child, &ending.status, 0);
    return ending;
}

/// What a scan by a user without special rights finds; `before` runs first, in the scanning
/// process.
QStringList discoveredWithoutRights(const Home &home, const std::function<void()> &before = [] { })
{
    const auto ending = inChild([&] {
        constexpr unsigned nobody = 65534;
        if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0))
            ::_exit(1);
        before();
        const QByteArray names = discovered(home).join(u'\n').toUtf8();
        if (::write(STDOUT_FILENO, names.constData(), static_cast<std::size_t>(names.size()))
            != names.size())
            ::_exit(1);
    });
    if (!WIFEXITED(ending.status) || WEXITSTATUS(ending.status) != 0)
        return {u"the scan failed: "_s + QString::fromUtf8(ending.output)};
    return QString::fromUtf8(ending.output).split(u'\n', Qt::SkipEmptyParts);
}

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

} // namespace

class DaemonDiscoveryServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theDirectoryIsInTheHome();
    void onlyNamesOfAnnouncementsAreCandidates();
    void nothingIsFoundInAnEmptyDirectory();
    void oneDaemonIsFoundWithTheFileItCameFrom();
    void thePathInTheFileIsOverwritten();
    void anEmptyObjectIsACandidateThatIsNeverAlive();
    void aFileWithAWrongTypeIsSkipped_data();
    void aFileWithAWrongTypeIsSkipped();
    void aPidOfZeroOrLessIsNeverAlive_data();
    void aPidOfZeroOrLessIsNeverAlive();
    void aProcessOfAnotherUserCountsAsDead();
    void theLargestPidIsOne();
    void aPidThatIsNoneEndsTheProgramAndNamesTheFile();

    void theNewerOfTwoLivingDaemonsComesFirst();
    void nanosecondsTellFilesApart();
    void anOlderLivingDaemonBeatsANewerDeadOne();
    void deadDaemonsStayBehindTheLivingOnes();
    void equalTimesKeepTheListingOrder();
    void impossibleTimesDoNoHarm();

    void tenThousandFilesAmongMuchElseAreFound();
    void linksToRegularFilesAreFollowed();
    void aLinkCountsWithItsOwnTime();
    void onlyWhatIsARegularFileIsOpened();
    void aFileOfTheCapIsReadAndALargerOneIsNot();
    void ofTooManyFilesTheNewestAreRead();
    void ofTooManyBytesTheNewestAreRead();
    void whatWasDecodedOfAScanIsBoundedToo();
    void whatMayNotBeReadIsSkipped();
    void aNameThatIsNoTextIsStillRead();
    void hiddenAndNestedFilesAreNotAsked();
    void skippedFilesAreToldOnlyWhenAskedFor();

    void aMissingDirectoryIsEmpty();
    void whatIsNoDirectoryIsEmpty();
    void aDirectoryThatMayNotBeListedIsEmpty();

    void theNewestFileOfAScanIsKept();
    void aScanWithoutCandidatesForgetsTheNewestFile();
    void aScanThatCannotListKeepsTheNewestFile();
    void theLastSuccessIsKeptThroughScans();
};

void DaemonDiscoveryServiceTest::theDirectoryIsInTheHome()
{
    const DaemonDiscoveryService service(u"/home/someone"_s);
    QCOMPARE(service.directory(), u"/home/someone/.gemini/antigravity/daemon"_s);
    QVERIFY(!service.directoryExists());
    const Home home;
    QVERIFY(DaemonDiscoveryService(home.path()).directoryExists());
}

void DaemonDiscoveryServiceTest::onlyNamesOfAnnouncementsAreCandidates()
{
    const Home home;
    for (const char *name : {"ls_a.json", "hub_b.json", "a.json", "ls_a.JSON", "ls_a.json.bak",
             "LS_a.json", ".ls_a.json", "xls_a.json", "ls_json", "hub.json"})
        home.write(name, "{}");
    QCOMPARE(sorted(discovered(home)), (QStringList{u"hub_b.json"_s, u"ls_a.json"_s}));
}

void DaemonDiscoveryServiceTest::nothingIsFoundInAnEmptyDirectory()
{
    const Home home;
    DaemonDiscoveryService service(home.path());
    QVERIFY(service.discoverDaemons().isEmpty());
    QVERIFY(!service.latestDaemonModDate());
    QVERIFY(!service.lastSuccessfulUpdate());
}

void DaemonDiscoveryServiceTest::oneDaemonIsFoundWithTheFileItCameFrom()
{
    const Home home;
    home.write("ls_1.json",
        R"({"pid":5,"httpsPort":1,"httpPort":2,"lsVersion":"v","csrfToken":"t","other":{}})");
    const DaemonInfo expected{.pid = 5,
        .httpsPort = 1,
        .httpPort = 2,
        .lsVersion = u"v"_s,
        .csrfToken = u"t"_s,
        .filePath = home.discovery() + u"/ls_1.json"};
    QVERIFY(DaemonDiscoveryService(home.path()).discoverDaemons() == QList{expected});
}

void DaemonDiscoveryServiceTest::thePathInTheFileIsOverwritten()
{
    const Home home;
    home.write("ls_1.json", R"({"filePath":"/etc/passwd"})");
    const auto infos = DaemonDiscoveryService(home.path()).discoverDaemons();
    QCOMPARE(infos.size(), 1);
    QCOMPARE(infos.at(0).filePath, home.discovery() + u"/ls_1.json");
}

void DaemonDiscoveryServiceTest::anEmptyObjectIsACandidateThatIsNeverAlive()
{
    const Home home;
    home.write("ls_empty.json", "{}", nine + 60);
    home.write("ls_alive.json", announcingUs(), nine);
    QCOMPARE(discovered(home), (QStringList{u"ls_alive.json"_s, u"ls_empty.json"_s}));
}

void DaemonDiscoveryServiceTest::aFileWithAWrongTypeIsSkipped_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("pid as text") << QByteArray(R"({"pid":"1"})");
    QTest::newRow("pid with a fraction") << QByteArray(R"({"pid":1.5})");
    QTest::newRow("port as text") << QByteArray(R"({"pid":1,"httpPort":"8080"})");
    QTest::newRow("port with a fraction") << QByteArray(R"({"pid":1,"httpsPort":8080.5})");
    QTest::newRow("token as number") << QByteArray(R"({"pid":1,"csrfToken":5})");
    QTest::newRow("cut short") << QByteArray(R"({"pid":1)");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no UTF-8") << QByteArray("{\"csrfToken\":\"\xe9\"}");
    QTest::newRow("binary") << QByteArray(4096, '\xff');
}

void DaemonDiscoveryServiceTest::aFileWithAWrongTypeIsSkipped()
{
    QFETCH(const QByteArray, content);
    const Home home;
    home.write("ls_bad.json", content, nine + 60);
    home.write("ls_good.json", "{}", nine);
    QCOMPARE(discovered(home), QStringList{u"ls_good.json"_s});
}

void DaemonDiscoveryServiceTest::aPidOfZeroOrLessIsNeverAlive_data()
{
    QTest::addColumn<qint64>("pid");
    // A signal to each of these would reach someone: this process's group, or everyone.
    QTest::newRow("our group by zero") << qint64{0};
    QTest::newRow("our group by its number") << -qint64{::getpgrp()};
    QTest::newRow("everyone") << qint64{-1};
    QTest::newRow("below 32 bits") << qint64{-4294967296} - 1;
    QTest::newRow("the smallest") << std::numeric_limits<qint64>::min();
}

void DaemonDiscoveryServiceTest::aPidOfZeroOrLessIsNeverAlive()
{
    QFETCH(const qint64, pid);
    const Home home;
    home.write("ls_none.json", announcing(pid), nine + 60);
    home.write("ls_alive.json", announcingUs(), nine);
    QCOMPARE(discovered(home), (QStringList{u"ls_alive.json"_s, u"ls_none.json"_s}));
}

void DaemonDiscoveryServiceTest::aProcessOfAnotherUserCountsAsDead()
{
    const Home home;
    home.write("ls_init.json", announcing(1), nine + 60);
    // Where init is ours as well it is alive without the question of rights, and the answer the
    // same.
    const auto names = discoveredWithoutRights(
        home, [&home] { home.write("ls_alive.json", announcingUs(), nine); });
    QCOMPARE(names, (QStringList{u"ls_alive.json"_s, u"ls_init.json"_s}));
}

void DaemonDiscoveryServiceTest::theLargestPidIsOne()
{
    const Home home;
    home.write("ls_1.json", announcing(2147483647));
    QCOMPARE(discovered(home), QStringList{u"ls_1.json"_s});
}

void DaemonDiscoveryServiceTest::aPidThatIsNoneEndsTheProgramAndNamesTheFile()
{
    const Home home;
    home.write("ls_impossible.json", R"({"pid":2147483648,"csrfToken":"secret-token"})");
    const auto ending = inChild([&home] { discovered(home); });
    QVERIFY(WIFSIGNALED(ending.status));
    QCOMPARE(WTERMSIG(ending.status), SIGABRT);
    QVERIFY(ending.output.contains(home.encoded("ls_impossible.json")));
    QVERIFY(!ending.output.contains("secret-token"));
    QVERIFY(!ending.output.contains("2147483648"));
}

void DaemonDiscoveryServiceTest::theNewerOfTwoLivingDaemonsComesFirst()
{
    for (const bool firstIsNewer : {true, false}) {
        const Home home;
        home.write("ls_1.json", announcingUs(), firstIsNewer ? nine + 1 : nine);
        home.write("ls_2.json", announcingUs(), firstIsNewer ? nine : nine + 1);
        QCOMPARE(discovered(home).first(), firstIsNewer ? u"ls_1.json"_s : u"ls_2.json"_s);
    }
}

void DaemonDiscoveryServiceTest::nanosecondsTellFilesApart()
{
    for (const bool firstIsNewer : {true, false}) {
        const Home home;
        home.write("ls_1.json", announcingUs(), nine, firstIsNewer ? 2 : 1);
        home.write("ls_2.json", announcingUs(), nine, firstIsNewer ? 1 : 2);
        QCOMPARE(discovered(home).first(), firstIsNewer ? u"ls_1.json"_s : u"ls_2.json"_s);
    }
}

void DaemonDiscoveryServiceTest::anOlderLivingDaemonBeatsANewerDeadOne()
{
    const Home home;
    home.write("ls_dead.json", announcing(deadPid()), nine + 3600);
    home.write("ls_alive.json", announcingUs(), nine);
    QCOMPARE(discovered(home), (QStringList{u"ls_alive.json"_s, u"ls_dead.json"_s}));
}

void DaemonDiscoveryServiceTest::deadDaemonsStayBehindTheLivingOnes()
{
    const Home home;
    const auto dead = announcing(deadPid());
    home.write("ls_dead1.json", dead, nine + 1);
    home.write("ls_alive1.json", announcingUs(), nine + 2);
    home.write("ls_dead2.json", dead, nine + 3);
    home.write("ls_alive2.json", announcingUs(), nine + 4);
    QCOMPARE(discovered(home),
        (QStringList{
            u"ls_alive2.json"_s, u"ls_alive1.json"_s, u"ls_dead2.json"_s, u"ls_dead1.json"_s}));
}

void DaemonDiscoveryServiceTest::equalTimesKeepTheListingOrder()
{
    const Home home;
    for (int i = 0; i < 200; ++i)
        home.write("ls_" + QByteArray::number(i) + ".json", "{}");
    QStringList listed;
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(
        ::opendir(QFile::encodeName(home.discovery()).constData()), ::closedir);
    QVERIFY(directory);
    while (const dirent *entry
        = ::readdir(directory.get())) { // NOLINT(concurrency-mt-unsafe): one thread.
        if (entry->d_name[0] != '.')
            listed.append(QString::fromLatin1(entry->d_name));
    }
    QCOMPARE(listed.size(), 200);
    QCOMPARE(discovered(home), listed);
}

void DaemonDiscoveryServiceTest::impossibleTimesDoNoHarm()
{
    const Home home;
    home.write("ls_future.json", "{}", std::numeric_limits<qint64>::max() / 4);
    home.write("ls_past.json", "{}", std::numeric_limits<qint64>::min() / 4);
    DaemonDiscoveryService service(home.path());
    QCOMPARE(
        namesOf(service.discoverDaemons()), (QStringList{u"ls_future.json"_s, u"ls_past.json"_s}));
    QVERIFY(service.latestDaemonModDate());
    QVERIFY(service.latestDaemonModDate()->isValid());
}

void DaemonDiscoveryServiceTest::tenThousandFilesAmongMuchElseAreFound()
{
    const Home home;
    constexpr int count = 10'000;
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        home.write("ls_" + number + ".json", i % 10 == 0 ? QByteArray("rubbish") : QByteArray("{}"),
            nine + i);
    }
    home.write("ls_alive.json", announcingUs(), nine - 1);
    const auto names = discovered(home);
    QCOMPARE(names.size(), count - count / 10 + 1);
    QCOMPARE(names.at(0), u"ls_alive.json"_s);
    QCOMPARE(names.at(1), u"ls_9999.json"_s);
    QCOMPARE(names.last(), u"ls_1.json"_s);
}

void DaemonDiscoveryServiceTest::linksToRegularFilesAreFollowed()
{
    const Home home;
    home.write("target", R"({"httpPort":7})");
    home.link("target", "ls_link.json");
    const auto infos = DaemonDiscoveryService(home.path()).discoverDaemons();
    QCOMPARE(namesOf(infos), QStringList{u"ls_link.json"_s});
    QCOMPARE(infos.at(0).httpPort, 7);
}

void DaemonDiscoveryServiceTest::aLinkCountsWithItsOwnTime()
{
    const Home home;
    home.write("ls_file.json", "{}", nine);
    for (const bool linkIsNewer : {true, false}) {
        home.write("target", "{}", linkIsNewer ? nine - 60 : nine + 60);
        ::unlink(home.encoded("ls_link.json").constData());
        home.link("target", "ls_link.json");
        home.touch("ls_link.json", linkIsNewer ? nine + 60 : nine - 60, 0, AT_SYMLINK_NOFOLLOW);
        DaemonDiscoveryService service(home.path());
        QCOMPARE(namesOf(service.discoverDaemons()),
            linkIsNewer ? (QStringList{u"ls_link.json"_s, u"ls_file.json"_s})
                        : (QStringList{u"ls_file.json"_s, u"ls_link.json"_s}));
        QCOMPARE(service.latestDaemonModDate(),
            QDateTime::fromSecsSinceEpoch(linkIsNewer ? nine + 60 : nine));
    }
}

void DaemonDiscoveryServiceTest::onlyWhatIsARegularFileIsOpened()
{
    // Each of these would hang the scan, or never end, if it were opened or read.
    const Home home;
    QCOMPARE(::mkfifo(home.encoded("ls_fifo.json").constData(), 0666), 0);
    home.link("ls_fifo.json", "ls_link_to_fifo.json");
    home.link("/dev/zero", "ls_zero.json");
    home.link("/dev/tty", "ls_tty.json");
    home.link("/proc/kmsg", "ls_kmsg.json");
    home.link("/", "ls_root.json");
    home.link("nowhere", "ls_nowhere.json");
    home.link("ls_loop.json", "ls_loop.json");
    QCOMPARE(::mknod(home.encoded("ls_socket.json").constData(), S_IFSOCK | 0666, 0), 0);
    QCOMPARE(::mkdir(home.encoded("ls_folder.json").constData(), 0777), 0);
    home.write("ls_good.json", "{}");
    QCOMPARE(discovered(home), QStringList{u"ls_good.json"_s});
}

void DaemonDiscoveryServiceTest::aFileOfTheCapIsReadAndALargerOneIsNot()
{
    const Home home;
    constexpr qint64 cap = DaemonDiscoveryService::Limits().file;
    home.write("ls_cap.json", "{}" + QByteArray(cap - 2, ' '));
    home.write("ls_larger.json", "{}" + QByteArray(cap - 1, ' '));
    home.write("ls_sparse.json", "{}");
    QCOMPARE(::truncate(home.encoded("ls_sparse.json").constData(), 100LL * 1024 * 1024), 0);
    QCOMPARE(discovered(home), QStringList{u"ls_cap.json"_s});
}

void DaemonDiscoveryServiceTest::ofTooManyFilesTheNewestAreRead()
{
    const Home home;
    constexpr int count = 100;
    for (int i = 0; i < count; ++i) // The newest is neither the first nor the last to be listed.
        home.write("ls_" + QByteArray::number(i) + ".json", "{}", nine + (i * 37) % count);
    for (const int most : {1, 7, 99, 100, 1000}) {
        DaemonDiscoveryService service(home.path(), {.files = most});
        const auto names = namesOf(service.discoverDaemons());
        QCOMPARE(names.size(), std::min(most, count));
        for (int i = 0; i < names.size(); ++i) {
            const int number = names.at(i).mid(3).chopped(5).toInt();
            QCOMPARE((number * 37) % count, count - 1 - i);
        }
        QCOMPARE(service.latestDaemonModDate(), QDateTime::fromSecsSinceEpoch(nine + count - 1));
    }
}

void DaemonDiscoveryServiceTest::ofTooManyBytesTheNewestAreRead()
{
    const Home home;
    home.write("ls_newest.json", "{}" + QByteArray(998, ' '), nine + 3);
    home.write("ls_too_much.json", "{}" + QByteArray(999, ' '), nine + 2);
    home.write("ls_older.json", "{}" + QByteArray(497, ' '), nine + 1);
    home.write("ls_oldest.json", "{}" + QByteArray(500, ' '), nine);
    const auto found = [&home](qint64 bytes) {
        return namesOf(DaemonDiscoveryService(home.path(), {.bytes = bytes}).discoverDaemons());
    };
    QCOMPARE(found(999), QStringList{u"ls_older.json"_s});
    QCOMPARE(found(1000), QStringList{u"ls_newest.json"_s});
    QCOMPARE(found(2000), (QStringList{u"ls_newest.json"_s, u"ls_older.json"_s}));
    QCOMPARE(found(2001), (QStringList{u"ls_newest.json"_s, u"ls_too_much.json"_s}));
    QCOMPARE(found(3002).size(), 4);
}

void DaemonDiscoveryServiceTest::whatWasDecodedOfAScanIsBoundedToo()
{
    const Home home;
    constexpr DaemonDiscoveryService::Limits limits;
    const QByteArray version(limits.file - 100, 'v');
    for (int i = 0; i < 400; ++i)
        home.write(
            "ls_" + QByteArray::number(i) + ".json", R"({"lsVersion":")" + version + R"("})");
    // Twice as large as allowed, it is no announcement; dead or alive.
    home.write("ls_huge.json",
        R"({"pid":)" + QByteArray::number(::getpid()) + R"(,"lsVersion":")" + version + version
            + R"("})");
    qsizetype letters = 0;
    const auto infos = DaemonDiscoveryService(home.path()).discoverDaemons();
    for (const auto &info : infos)
        letters += info.lsVersion.value_or(QString()).size();
    QVERIFY(!namesOf(infos).contains(u"ls_huge.json"_s));
    QVERIFY(letters > limits.bytes / 2);
    QVERIFY(letters <= limits.bytes);
}

void DaemonDiscoveryServiceTest::whatMayNotBeReadIsSkipped()
{
    const Home home;
    home.write("ls_secret.json", "{}", nine + 60);
    QCOMPARE(::chmod(home.encoded("ls_secret.json").constData(), 0), 0);
    home.write("ls_good.json", "{}", nine);
    QCOMPARE(discoveredWithoutRights(home), QStringList{u"ls_good.json"_s});
}

void DaemonDiscoveryServiceTest::aNameThatIsNoTextIsStillRead()
{
    const Home home;
    home.write("ls_\xff\xfe.json", R"({"httpPort":7})");
    const auto infos = DaemonDiscoveryService(home.path()).discoverDaemons();
    // QTemporaryDir could not remove a file of that name.
    QCOMPARE(::unlink(home.encoded("ls_\xff\xfe.json").constData()), 0);
    QCOMPARE(infos.size(), 1);
    QCOMPARE(infos.at(0).httpPort, 7);
}

void DaemonDiscoveryServiceTest::hiddenAndNestedFilesAreNotAsked()
{
    const Home home;
    home.write(".ls_hidden.json", "{}");
    QCOMPARE(::mkdir(home.encoded("ls_nested").constData(), 0777), 0);
    home.write("ls_nested/ls_a.json", "{}");
    QCOMPARE(discovered(home), QStringList{});
}

namespace {

QStringList &messages()
{
    static QStringList all;
    return all;
}

void keepMessage(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString &text)
{
    messages().append(text);
}

} // namespace

void DaemonDiscoveryServiceTest::skippedFilesAreToldOnlyWhenAskedFor()
{
    const Home home;
    home.write("ls_bad.json", R"({"csrfToken":["secret"]})");
    home.write("ls_rubbish.json", "secret");
    home.link("nowhere", "ls_nowhere.json");
    messages().clear();
    const auto before = qInstallMessageHandler(keepMessage);
    discovered(home);
    const auto unasked = std::exchange(messages(), {});
    QLoggingCategory::setFilterRules(u"brimwatch.discovery.debug=true"_s);
    discovered(home);
    QLoggingCategory::setFilterRules(QString());
    qInstallMessageHandler(before);
    const auto asked = std::exchange(messages(), {}).join(u'\n');
    QCOMPARE(unasked, QStringList{});
    for (const auto &name : {u"ls_bad.json"_s, u"ls_rubbish.json"_s, u"ls_nowhere.json"_s})
        QVERIFY2(asked.contains(name), qUtf8Printable(asked));
    QVERIFY2(!asked.contains(u"secret"_s), qUtf8Printable(asked));
}

void DaemonDiscoveryServiceTest::aMissingDirectoryIsEmpty()
{
    QTemporaryDir home;
    DaemonDiscoveryService service(home.path());
    QVERIFY(!service.directoryExists());
    QVERIFY(service.discoverDaemons().isEmpty());
}

void DaemonDiscoveryServiceTest::whatIsNoDirectoryIsEmpty()
{
    QTemporaryDir home;
    DaemonDiscoveryService service(home.path());
    QVERIFY(QDir(home.path()).mkpath(u".gemini/antigravity"_s));
    QCOMPARE(::mkfifo(QFile::encodeName(service.directory()).constData(), 0666), 0);
    QVERIFY(service.directoryExists());
    QVERIFY(service.discoverDaemons().isEmpty());
}

void DaemonDiscoveryServiceTest::aDirectoryThatMayNotBeListedIsEmpty()
{
    const Home home;
    home.write("ls_a.json", "{}");
    QCOMPARE(discoveredWithoutRights(home), QStringList{u"ls_a.json"_s});
    const QByteArray directory = QFile::encodeName(home.discovery());
    QCOMPARE(::chmod(directory.constData(), 0), 0);
    const auto names = discoveredWithoutRights(home);
    QCOMPARE(::chmod(directory.constData(), 0777), 0);
    QCOMPARE(names, QStringList{});
}

void DaemonDiscoveryServiceTest::theNewestFileOfAScanIsKept()
{
    const Home home;
    home.write("ls_alive.json", announcingUs(), nine);
    home.write("ls_dead.json", announcing(deadPid()), nine + 60, 123'999'999);
    home.write("ls_bad.json", "rubbish", nine + 600);
    home.write("other.json", "{}", nine + 600);
    DaemonDiscoveryService service(home.path());
    QVERIFY(!service.latestDaemonModDate());
    service.discoverDaemons();
    QVERIFY(service.latestDaemonModDate());
    QCOMPARE(service.latestDaemonModDate()->toMSecsSinceEpoch(), (nine + 60) * 1000 + 123);
}

void DaemonDiscoveryServiceTest::aScanWithoutCandidatesForgetsTheNewestFile()
{
    const Home home;
    home.write("ls_a.json", "{}");
    DaemonDiscoveryService service(home.path());
    service.discoverDaemons();
    QVERIFY(service.latestDaemonModDate());
    QVERIFY(QFile::remove(home.discovery() + u"/ls_a.json"));
    service.discoverDaemons();
    QVERIFY(!service.latestDaemonModDate());
}

void DaemonDiscoveryServiceTest::aScanThatCannotListKeepsTheNewestFile()
{
    const Home home;
    home.write("ls_a.json", "{}");
    DaemonDiscoveryService service(home.path());
    service.discoverDaemons();
    QVERIFY(QDir(home.discovery()).removeRecursively());
    QVERIFY(service.discoverDaemons().isEmpty());
    QVERIFY(service.latestDaemonModDate());
    QCOMPARE(service.latestDaemonModDate()->toSecsSinceEpoch(), nine);
}

void DaemonDiscoveryServiceTest::theLastSuccessIsKeptThroughScans()
{
    const Home home;
    DaemonDiscoveryService service(home.path());
    QVERIFY(!service.lastSuccessfulUpdate());
    const auto time = QDateTime::fromSecsSinceEpoch(nine);
    service.setLastSuccessfulUpdate(time);
    service.discoverDaemons();
    QCOMPARE(service.lastSuccessfulUpdate(), time);
}

} // namespace brimwatch::discovery

QTEST_GUILESS_MAIN(brimwatch::discovery::DaemonDiscoveryServiceTest)
#include "daemon_discovery_service_test.moc"
