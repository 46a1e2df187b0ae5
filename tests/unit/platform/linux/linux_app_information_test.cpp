#include "platform/linux/linux_app_information.h"

#include <QFile>
#include <QSysInfo>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;

class LinuxAppInformationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theNameOfTheSystemIsReadAsTheShellWould_data()
    {
        QTest::addColumn<QByteArray>("osRelease");
        QTest::addColumn<QString>("name");
        QTest::newRow("Debian") << QByteArray("PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n"
                                              "NAME=\"Debian GNU/Linux\"\n")
                                << u"Debian GNU/Linux 12 (bookworm)"_s;
        QTest::newRow("single quotes")
            << QByteArray(R"(PRETTY_NAME='A $B \ "C"')") << uR"(A $B \ "C")"_s;
        QTest::newRow("no quotes") << QByteArray("NAME=x\nPRETTY_NAME=Arch\r\n") << u"Arch"_s;
        QTest::newRow("escapes") << QByteArray(R"(PRETTY_NAME="a \"b\" \$c \\")")
                                 << uR"(a "b" $c \)"_s;
        QTest::newRow("last one") << QByteArray("PRETTY_NAME=a\nPRETTY_NAME=b\n") << u"b"_s;
        QTest::newRow("comment") << QByteArray("#PRETTY_NAME=a\n") << u"Linux"_s;
        QTest::newRow("in one line") << QByteArray("PRETTY_NAME=\"a\tb\vc\"") << u"a b c"_s;
        QTest::newRow("open quote") << QByteArray("PRETTY_NAME=\"a") << u"a"_s;
        QTest::newRow("ends in a backslash") << QByteArray("PRETTY_NAME=a\\") << u"a\\"_s;
        QTest::newRow("empty") << QByteArray("PRETTY_NAME=\"\"\n") << u"Linux"_s;
        QTest::newRow("nothing") << QByteArray() << u"Linux"_s;
    }
    void theNameOfTheSystemIsReadAsTheShellWould()
    {
        QFETCH(QByteArray, osRelease);
        QFETCH(QString, name);
        QCOMPARE(prettyNameOf(osRelease), name);
    }

    void theProgramKnowsItsBuildAndItsSystem()
    {
        const auto information = linuxAppInformation();
        QCOMPARE(information.version, QString::fromLatin1(BRIMWATCH_VERSION));
        const QString build = QString::fromLatin1(BRIMWATCH_BUILD_NUMBER);
        QCOMPARE(information.build, build.isEmpty() ? std::nullopt : std::optional(build));
        QFile file(u"/etc/os-release"_s);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(information.systemVersion,
            QString(prettyNameOf(file.readAll()) + u", kernel "_s + QSysInfo::kernelVersion()));
    }
};

QTEST_GUILESS_MAIN(LinuxAppInformationTest)
#include "linux_app_information_test.moc"
