#include "platform/linux/desktop/desktop_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;

Q_DECLARE_METATYPE(std::optional<bool>)

class DesktopEntryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void execIsUnquotedAndLosesItsFieldCodes_data()
    {
        QTest::addColumn<QString>("exec");
        QTest::addColumn<QStringList>("command");
        QTest::newRow("plain") << u"ide"_s << QStringList{u"ide"_s};
        QTest::newRow("arguments")
            << u"ide --new-window"_s << QStringList{u"ide"_s, u"--new-window"_s};
        QTest::newRow("field code") << u"ide %F --wait"_s << QStringList{u"ide"_s, u"--wait"_s};
        QTest::newRow("percent") << u"ide 100%%"_s << QStringList{u"ide"_s, u"100%"_s};
        QTest::newRow("quoted") << u"\"/opt/My IDE/ide\" \"a b\""_s
                                << QStringList{u"/opt/My IDE/ide"_s, u"a b"_s};
        QTest::newRow("escaped in quotes")
            << u"ide \"a\\\"b\\\\c\\$d\""_s << QStringList{u"ide"_s, u"a\"b\\c$d"_s};
        QTest::newRow("empty argument") << u"ide \"\""_s << QStringList{u"ide"_s, QString()};
        QTest::newRow("percent in quotes")
            << u"\"/opt/100%% sure\" \"%f\""_s << QStringList{u"/opt/100% sure"_s, u"%f"_s};
        QTest::newRow("other blanks are letters")
            << u"/opt/My\u3000IDE/\u00a0ide --new\u2028window\tb"_s
            << QStringList{u"/opt/My\u3000IDE/\u00a0ide"_s, u"--new\u2028window"_s, u"b"_s};
        QTest::newRow("broken quotes") << u"ide \"a"_s << QStringList();
        QTest::newRow("nothing") << u"  "_s << QStringList();
    }
    void execIsUnquotedAndLosesItsFieldCodes()
    {
        QFETCH(QString, exec);
        QFETCH(QStringList, command);
        QCOMPARE(commandOfExec(exec), command);
    }

    void whatExecSaysIsReadAsItWasMeant_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QString>("exec");
        QTest::newRow("plain") << QStringList{u"/usr/bin/brimwatch"_s} << u"/usr/bin/brimwatch"_s;
        QTest::newRow("space") << QStringList{u"/opt/My Programs/b"_s}
                               << u"\"/opt/My Programs/b\""_s;
        QTest::newRow("quotes") << QStringList{u"/a\"b'c"_s} << u"\"/a\\\"b'c\""_s;
        QTest::newRow("backslash") << QStringList{u"/a\\b"_s} << u"\"/a\\\\b\""_s;
        QTest::newRow("dollar and backtick")
            << QStringList{u"/$HOME/`id`"_s} << u"\"/\\$HOME/\\`id\\`\""_s;
        QTest::newRow("percent") << QStringList{u"/100%u"_s} << u"/100%%u"_s;
        QTest::newRow("percent and space") << QStringList{u"/100% u"_s} << u"\"/100%% u\""_s;
        QTest::newRow("tab, line feed") << QStringList{u"/a\tb\nc"_s} << u"\"/a\tb\nc\""_s;
        QTest::newRow("carriage return") << QStringList{u"/a\rb"_s} << u"\"/a\rb\""_s;
        QTest::newRow("other blanks")
            << QStringList{u"/a\u3000b\u00a0"_s} << u"\"/a\u3000b\u00a0\""_s;
        QTest::newRow("other letters") << QStringList{u"/opt/é🧠/b"_s} << u"/opt/é🧠/b"_s;
        QTest::newRow("arguments")
            << QStringList{u"b"_s, u"c d"_s, QString(), u"%%"_s} << u"b \"c d\" \"\" %%%%"_s;
    }
    void whatExecSaysIsReadAsItWasMeant()
    {
        QFETCH(QStringList, command);
        QFETCH(QString, exec);
        QCOMPARE(execOfCommand(command), exec);
        QCOMPARE(commandOfExec(exec), command);
        auto entry = DesktopEntryText::parse("[Desktop Entry]\n");
        QVERIFY(entry);
        entry->set("Exec"_L1, exec);
        entry = DesktopEntryText::parse(entry->toBytes());
        QVERIFY(entry);
        QCOMPARE(commandOfExec(entry->value("Exec"_L1)), command);
    }

    void keysAreReadFromTheirGroupAlone()
    {
        const auto entry = DesktopEntryText::parse("Name=before\n"
                                                   "# [Desktop Entry]\n"
                                                   "[Other]\nName=other\nHidden=true\n"
                                                   "  [Desktop Entry]  \n"
                                                   "#Name=comment\n"
                                                   "Name[de]=Deutsch\n"
                                                   " Name = first \r\n"
                                                   "Name=last\\sone\n"
                                                   "no key\n=no key\n"
                                                   "[Desktop Action x]\nName=action\n");
        QVERIFY(entry);
        QCOMPARE(entry->value("Name"_L1), u"last one"_s);
        QCOMPARE(entry->rawValue("Name"_L1), u"last\\sone"_s);
        QVERIFY(entry->has("Name"_L1));
        QVERIFY(!entry->has("Hidden"_L1));
        QVERIFY(!entry->has("name"_L1));
        QVERIFY(!entry->has(""_L1));
    }

    void booleansAreReadByTheirLetters_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<std::optional<bool>>("value");
        using Value = std::optional<bool>;
        QTest::newRow("true") << QByteArray("Hidden=true") << Value(true);
        QTest::newRow("false") << QByteArray("Hidden=false") << Value(false);
        QTest::newRow("1") << QByteArray("Hidden=1") << Value(true);
        QTest::newRow("0") << QByteArray("Hidden=0") << Value(false);
        QTest::newRow("True") << QByteArray("Hidden=True") << Value();
        QTest::newRow("yes") << QByteArray("Hidden=yes") << Value();
        QTest::newRow("empty") << QByteArray("Hidden=") << Value();
        QTest::newRow("absent") << QByteArray() << Value();
        QTest::newRow("other case of the key") << QByteArray("hidden=true") << Value();
    }
    void booleansAreReadByTheirLetters()
    {
        QFETCH(QByteArray, line);
        QFETCH(std::optional<bool>, value);
        const auto entry = DesktopEntryText::parse("[Desktop Entry]\n" + line);
        QVERIFY(entry);
        QCOMPARE(entry->boolean("Hidden"_L1), value);
    }

    void listsAreSplitAtTheirSemicolons_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QStringList>("items");
        QTest::newRow("empty") << QByteArray() << QStringList();
        QTest::newRow("one") << QByteArray("KDE") << QStringList{u"KDE"_s};
        QTest::newRow("ended") << QByteArray("KDE;XFCE;") << QStringList{u"KDE"_s, u"XFCE"_s};
        QTest::newRow("escaped") << QByteArray(R"(a\;b;c\\;d\se)")
                                 << QStringList{u"a;b"_s, u"c\\"_s, u"d e"_s};
    }
    void listsAreSplitAtTheirSemicolons()
    {
        QFETCH(QByteArray, value);
        QFETCH(QStringList, items);
        auto entry = DesktopEntryText::parse("[Desktop Entry]\nOnlyShowIn=" + value);
        QVERIFY(entry);
        QCOMPARE(entry->list("OnlyShowIn"_L1), items);
        entry->setList("OnlyShowIn"_L1, items);
        QCOMPARE(entry->list("OnlyShowIn"_L1), items);
    }

    void aChangeTouchesNothingElse()
    {
        const QByteArray before = "# ours \xff\n[Desktop Entry]\nName=B\nName[de]=C\n"
                                  "Hidden=true\n\nHidden=true\r\n\n[Desktop Action x]\n"
                                  "Hidden=true\nExec=\xfe\n";
        auto entry = DesktopEntryText::parse(before);
        QVERIFY(entry);
        QCOMPARE(entry->toBytes(), before);
        entry->remove("Hidden"_L1);
        entry->set("Name"_L1, u" a\\b\nc  "_s);
        entry->set("Exec"_L1, u"é"_s);
        QCOMPARE(entry->toBytes(),
            QByteArray("# ours \xff\n[Desktop Entry]\nName=\\sa\\\\b\\nc \\s\nName[de]=C\n"
                       "Exec=é\n\n\n[Desktop Action x]\nHidden=true\nExec=\xfe\n"));
        QCOMPARE(entry->value("Name"_L1), u" a\\b\nc  "_s);
    }

    void aProgramWithANulInItsNameCannotBeStarted()
    {
        QVERIFY(canBeStarted(u"/bin/sh"_s));
        QVERIFY(!canBeStarted(u"/bin/sh\0x"_s));
        QVERIFY(!canBeStarted(u"sh\0x"_s));
        const auto entry = DesktopEntryText::parse(
            QByteArrayLiteral("[Desktop Entry]\nType=Application\nExec=/bin/sh\0\n"));
        QVERIFY(entry && entry->startableCommand().isEmpty());
    }

    void whiteSpaceAroundAValueIsAPartOfIt()
    {
        for (const QString &value : {u" a "_s, u"\ta\t"_s, u"\va\v"_s, u"\fa\f"_s, u"\ra\r"_s}) {
            auto entry = DesktopEntryText::parse("[Desktop Entry]\n").value();
            entry.set("Name"_L1, value);
            QCOMPARE(entry.value("Name"_L1), value);
        }
    }

    void aKeyIsAddedToAFileThatEndsInItsLine()
    {
        auto entry = DesktopEntryText::parse("[Desktop Entry]\nName=B");
        QVERIFY(entry);
        entry->set("Type"_L1, u"Application"_s);
        QCOMPARE(entry->toBytes(), QByteArray("[Desktop Entry]\nName=B\nType=Application\n"));
    }

    void whatIsNoEntryIsNotRead()
    {
        const QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString path = folder.filePath(u"a.desktop"_s);
        QVERIFY(!DesktopEntryText::read(path));
        QCOMPARE(mkfifo(qPrintable(path), 0600), 0);
        QVERIFY(!DesktopEntryText::read(path));
        QVERIFY(QFile::remove(path));
        QVERIFY(QDir().mkdir(path));
        QVERIFY(!DesktopEntryText::read(path));
        QVERIFY(QDir().rmdir(path));
        for (const QString &target : {u"/dev/zero"_s, u"/dev/null"_s, u"/nowhere"_s, path}) {
            QVERIFY(QFile::link(target, path));
            QVERIFY(!DesktopEntryText::read(path));
            QVERIFY(QFile::remove(path));
        }
        write(path, QByteArray(1000, '\0'));
        QVERIFY(!DesktopEntryText::read(path));
        write(path, "");
        QVERIFY(!DesktopEntryText::read(path));
    }

    void aFileIsReadUpToItsLargestSize()
    {
        const QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString path = folder.filePath(u"a.desktop"_s);
        const QByteArray start = "[Desktop Entry]\nName=B\n#";
        write(path, start.leftJustified(DesktopEntryText::largestFile, 'x'));
        QVERIFY(DesktopEntryText::read(path));
        write(path, start.leftJustified(DesktopEntryText::largestFile + 1, 'x'));
        QVERIFY(!DesktopEntryText::read(path));
    }

private:
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }
};

QTEST_GUILESS_MAIN(DesktopEntryTest)
#include "desktop_entry_test.moc"
