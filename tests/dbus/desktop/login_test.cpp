#include "platform/linux/desktop/autostart_login_item.h"
#include "service/launch_at_login_service.h"
#include "support/fake_opener.h"
#include "support/fake_watcher.h"
#include "support/private_display.h"

#include <QCoreApplication>
#include <QDBusReply>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

/// The switch, then a login of another session: a real reader of autostart folders, an empty home,
/// a display and a bus of its own, and a panel that hosts items.
class LoginTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theProgramComesUpAtLoginOnlyWhileItIsSwitchedOn()
    {
        // Started by a path of its own, as if it were installed there.
        const QTemporaryDir installed;
        QVERIFY(installed.isValid());
        QVERIFY(QDir(installed.path()).mkdir(u"my programs"_s));
        const QString program = installed.filePath(u"my programs/brimwatch (new)"_s);
        QVERIFY(QFile::link(QStringLiteral(BRIMWATCH_PROGRAM), program));

        test::FakeOpener opener;
        platform::AutostartLoginItem item(
            {.configHome = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
                .program = program,
                .currentDesktops = {u"XFCE"_s}},
            opener);
        service::LaunchAtLoginService service(item);
        QVERIFY(!service.isEnabled());
        QVERIFY(!logIn(u"--dry-run"_s).contains(program));

        service.setEnabled(true);
        QVERIFY(service.isEnabled());
        QVERIFY(logIn(u"--dry-run"_s).contains(program));

        const test::FakeWatcher watcher;
        test::OtherProgram other;
        logIn();
        QTRY_COMPARE_WITH_TIMEOUT(watcher.senders().size(), 1, timeout);
        const QString sender = watcher.senders().constFirst();
        const QDBusReply<uint> pid
            = other.call(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                u"org.freedesktop.DBus"_s, u"GetConnectionUnixProcessID"_s, {sender});
        QVERIFY2(pid.isValid(), qPrintable(pid.error().message()));
        QCOMPARE(QFileInfo(u"/proc/%1/exe"_s.arg(pid.value())).canonicalFilePath(),
            QFileInfo(QStringLiteral(BRIMWATCH_PROGRAM)).canonicalFilePath());
        QCOMPARE(::kill(static_cast<pid_t>(pid.value()), SIGTERM), 0);
        QTRY_COMPARE_WITH_TIMEOUT(other.ownerOf(sender), QString(), timeout);

        service.setEnabled(false);
        QVERIFY(!service.isEnabled());
        QVERIFY(!logIn(u"--dry-run"_s).contains(program));
    }

private:
    static constexpr int timeout = 60'000; // Milliseconds, as QTest takes them.

    /// Everything that the reader wrote.
    static QString logIn(const QString &option = {})
    {
        QStringList arguments{u"--autostart"_s, u"--environment"_s, u"XFCE"_s};
        if (!option.isEmpty())
            arguments.append(option);
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.remove(u"QT_QPA_PLATFORM"_s);
        environment.insert(u"XDG_CURRENT_DESKTOP"_s, u"XFCE"_s);
        // What this machine starts at login is no concern of ours.
        environment.insert(u"XDG_CONFIG_DIRS"_s, u"/nowhere"_s);
        QProcess reader;
        reader.setProcessEnvironment(environment);
        // To a file: what it starts would keep a pipe open.
        const QTemporaryDir folder;
        reader.setProcessChannelMode(QProcess::MergedChannels);
        reader.setStandardOutputFile(folder.filePath(u"output"_s));
        reader.start(u"dex"_s, arguments);
        const bool ended = reader.waitForFinished(timeout);
        QFile file(folder.filePath(u"output"_s));
        const QString output
            = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        if (!ended || reader.exitStatus() != QProcess::NormalExit || reader.exitCode() != 0)
            QTest::qFail(
                qPrintable(u"dex: "_s + reader.errorString() + u' ' + output), __FILE__, __LINE__);
        return output;
    }
};

int main(int argc, char **argv)
{
    const test::PrivateDisplay display;
    const QCoreApplication application(argc, argv);
    LoginTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "login_test.moc"
