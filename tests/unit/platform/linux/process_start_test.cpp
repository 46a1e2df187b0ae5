#include "platform/linux/process_start.h"

#include <QTest>

#include <pwd.h>
#include <unistd.h>

using brimwatch::platform::beginProcess;

class ProcessStartTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        qputenv("HOME", m_home);
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_DIRS"})
            qunsetenv(name);
    }

    void theHomeIsAbsolute_data()
    {
        QTest::addColumn<QByteArray>("home");
        QTest::newRow("unset") << QByteArray();
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("relative") << QByteArray("here/home");
    }
    void theHomeIsAbsolute()
    {
        QFETCH(QByteArray, home);
        if (home.isNull())
            qunsetenv("HOME");
        else
            qputenv("HOME", home);
        beginProcess();
        // NOLINTNEXTLINE(concurrency-mt-unsafe): there is only one thread.
        QCOMPARE(qgetenv("HOME"), QByteArray(::getpwuid(::getuid())->pw_dir));
    }

    void anAbsoluteHomeStays()
    {
        qputenv("HOME", "/nowhere/at all");
        beginProcess();
        QCOMPARE(qgetenv("HOME"), QByteArray("/nowhere/at all"));
    }

    void relativeFoldersAreIgnored()
    {
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                 "XDG_STATE_HOME", "XDG_RUNTIME_DIR"}) {
            const QByteArray before = qgetenv(name);
            for (const char *folder : {"config", "./config", "~/config", ""}) {
                qputenv(name, folder);
                beginProcess();
                QVERIFY2(!qEnvironmentVariableIsSet(name), name);
            }
            qputenv(name, "/absolute");
            beginProcess();
            QCOMPARE(qgetenv(name), QByteArray("/absolute"));
            if (before.isNull())
                qunsetenv(name);
            else
                qputenv(name, before);
        }
    }

    void listsKeepTheirAbsoluteFolders_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("all") << QByteArray("/a:/b") << QByteArray("/a:/b");
        QTest::newRow("some") << QByteArray("a:/b::./c:/d") << QByteArray("/b:/d");
        QTest::newRow("none") << QByteArray("a:b") << QByteArray();
        QTest::newRow("empty") << QByteArray("") << QByteArray();
    }
    void listsKeepTheirAbsoluteFolders()
    {
        QFETCH(QByteArray, before);
        qputenv("XDG_DATA_DIRS", before);
        beginProcess();
        QTEST(qgetenv("XDG_DATA_DIRS"), "after");
    }

private:
    QByteArray m_home = qgetenv("HOME");
};

QTEST_GUILESS_MAIN(ProcessStartTest)
#include "process_start_test.moc"
