#include "core/clock.h"
#include "discovery/daemon_discovery_service.h"
#include "faults/failing_calls.h"
#include "platform/linux/desktop/autostart_login_item.h"
#include "service/quota_fetch_client.h"
#include "service/settings.h"
#include "support/fake_opener.h"
#include "support/sample_daemon_process.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using platform::LoginItem;
using test::Call;

namespace {

/// A way through the program on which each call of the system fails once.
struct Way {
    std::function<void()> prepare = [] { };
    std::function<void()> go;
    /// Whether what it left behind is whole: the state of before or that of after.
    std::function<bool()> isWhole;
    /// Whether all is right when it is gone again, with nothing that fails.
    std::function<bool()> isRight;
};

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// Where a call of the system fails, the program lives, leaves nothing in halves, and is right
/// again once the fault is gone.
///
/// Deliberate: no allocation fails here. Qt's containers throw then, which ends the program, and
/// Linux ends it before it lets one of these sizes fail.
class FaultsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
    }

    void discoveryOverlooksWhatItCannotRead()
    {
        const QDir folder(m_folder->filePath(u".gemini/antigravity/daemon"_s));
        QVERIFY(QDir().mkpath(folder.path()));
        for (int i = 0; i < 3; ++i) {
            QFile file(folder.filePath(u"ls_%1.json"_s.arg(i)));
            QVERIFY(file.open(QIODevice::WriteOnly));
            QVERIFY(file.write(R"({"pid": 1, "httpPort": 4711, "csrfToken": "t"})") > 0);
        }
        discovery::DaemonDiscoveryService discovery(m_folder->path());
        qsizetype found = 0;
        const Way way{.go = [&] { found = discovery.discoverDaemons().size(); },
            // At most the one whose file failed is missing, or the folder could not be opened.
            .isWhole = [&] { return found == 3 || found == 2 || found == 0; },
            .isRight = [&] { return discovery.discoverDaemons().size() == 3; }};
        QVERIFY(fail(way, {Call::Open, Call::Read}) > 4);
    }

    void settingsAreReadOrAreTheDefaults()
    {
        const QString path = m_folder->filePath(u"brimwatch.conf"_s);
        QVERIFY(makeFile(path, "[General]\nlowQuotaThreshold=35\n"));
        double threshold = 0;
        const auto read = [&] {
            const service::SettingsStore store(path);
            threshold = store.value(service::settings::lowQuotaThreshold);
        };
        const Way way{.go = read,
            .isWhole = [&] { return threshold == 35 || threshold == 20; },
            .isRight = [&] { return read(), threshold == 35; }};
        QVERIFY(fail(way, {Call::Open, Call::Read}) > 1);
        QCOMPARE(contentsOf(path), QByteArray("[General]\nlowQuotaThreshold=35\n"));
    }

    void aChangedSettingIsStoredOrTheFileStays()
    {
        const QString path = m_folder->filePath(u"brimwatch.conf"_s);
        const QByteArray before = "[General]\nlowQuotaThreshold=35\nother=kept\n";
        const QByteArray after = "[General]\nlowQuotaThreshold=40\nother=kept\n";
        const auto change = [&] {
            service::SettingsStore store(path);
            store.setValue(service::settings::lowQuotaThreshold, 40);
            store.flush();
            m_kept = store.value(service::settings::lowQuotaThreshold) == 40;
        };
        const Way way{.prepare = [&] { QVERIFY(makeFile(path, before)); },
            .go = change,
            // What cannot be stored holds until the program ends.
            .isWhole =
                [&] {
                    const QByteArray now = contentsOf(path);
                    return m_kept && (now == before || now == after) && isAlone(path);
                },
            .isRight = [&] { return change(), contentsOf(path) == after; }};
        QVERIFY(fail(way, {Call::Open, Call::Read, Call::Write, Call::Rename}) > 4);
    }

    void theLoginItemIsWrittenOrSaysWhyNot()
    {
        test::FakeOpener opener;
        platform::AutostartLoginItem item({.configHome = m_folder->filePath(u"config"_s),
                                              .program = u"/bin/true"_s,
                                              .currentDesktops = {}},
            opener);
        Result<void, QString> done;
        const auto isOn = [&] { return item.status() == LoginItem::Status::enabled; };
        const Way on{.prepare = [&] { QVERIFY(item.unregisterItem()); },
            .go = [&] { done = item.registerItem(); },
            .isWhole =
                [&] {
                    return isOn() ? done.has_value()
                                  : !done && !done.error().isEmpty() && !QFile::exists(item.file());
                },
            .isRight = [&] { return item.registerItem() && isOn() && isAlone(item.file()); }};
        QVERIFY(fail(on, {Call::Open, Call::Read, Call::Write, Call::Rename}) > 2);

        // Reading an entry that stands there: the user's own keys stay, whatever fails.
        const QByteArray theirs
            = "[Desktop Entry]\nType=Application\nName=B\nExec=true\nX-Own=kept\n";
        const Way again{
            .prepare = [&] { QVERIFY(makeFile(item.file(), theirs + "Hidden=true\n")); },
            .go = [&] { done = item.registerItem(); },
            .isWhole = [&] { return contentsOf(item.file()).contains("X-Own=kept"); },
            .isRight = [&] { return item.registerItem() && contentsOf(item.file()) == theirs; }};
        QVERIFY(fail(again, {Call::Open, Call::Read, Call::Write, Call::Rename}) > 4);
    }

    void theRequestFailsAndTheNextOneSucceeds()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
        discovery::DaemonDiscoveryService discovery(qEnvironmentVariable("HOME"));
        SystemClock clock;
        service::QuotaFetchClient client(discovery, clock);
        std::optional<service::FetchResult> result;
        const auto fetch = [&] {
            const auto future = client.fetchQuotaSummary({});
            // A failure that is not noticed takes the four seconds of the attempt.
            static_cast<void>(QTest::qWaitFor([&] { return future.isFinished(); }, timeout));
            result = future.isFinished() ? std::optional(future.result()) : std::nullopt;
        };
        const Way way{.go = fetch,
            .isWhole
            = [&] { return result && (*result || !result->error().errorDescription().isEmpty()); },
            .isRight = [&] { return fetch(), result && *result; }};
        QVERIFY(fail(way, {Call::Open, Call::Read, Call::Write, Call::Connect}) > 3);
    }

private:
    static constexpr int timeout = 60'000; // Milliseconds; nothing that works comes near it.

    /// Fails each call of these kinds in turn, and returns how many there were.
    static long fail(const Way &way, std::initializer_list<Call> calls)
    {
        constexpr long most = 500;
        long failed = 0;
        for (const Call call : calls) {
            for (long number = 0;; ++number) {
                way.prepare();
                test::failCall(call, number);
                way.go();
                const long counted = test::countedCalls();
                const QByteArray which = "call " + QByteArray::number(number) + " of "
                    + QByteArray::number(counted) + " of kind "
                    + QByteArray::number(static_cast<int>(call));
                if (!QTest::qVerify(way.isWhole(), "isWhole", which, __FILE__, __LINE__)
                    || !QTest::qVerify(way.isRight(), "isRight", which, __FILE__, __LINE__)
                    || !QTest::qVerify(number < most, "ends", which, __FILE__, __LINE__))
                    return 0;
                if (counted <= number)
                    break;
                ++failed;
            }
        }
        qInfo("%ld calls failed in turn", failed);
        return failed;
    }

    static bool makeFile(const QString &path, const QByteArray &text)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    }
    /// Whether no temporary file is left beside it.
    static bool isAlone(const QString &path)
    {
        return QFileInfo(path).dir().entryList(QDir::Files | QDir::Hidden).size() == 1;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    bool m_kept = false;
};

QTEST_GUILESS_MAIN(FaultsTest)
#include "faults_test.moc"
