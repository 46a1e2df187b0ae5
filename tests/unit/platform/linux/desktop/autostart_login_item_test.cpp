#include "platform/linux/desktop/autostart_login_item.h"
#include "platform/linux/desktop/desktop_entry.h"
#include "support/fake_opener.h"
#include "support/full_disk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <sys/stat.h>

#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::platform;
using Status = LoginItem::Status;

Q_DECLARE_METATYPE(Status)

class AutostartLoginItemTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_program = m_folder->filePath(u"brimwatch"_s);
        makeProgram(m_program);
        m_opener.opened.clear();
        m_path = qgetenv("PATH");
    }
    void cleanup() { qputenv("PATH", m_path); }

    // The state

    void withoutAnEntryNothingIsRegistered()
    {
        const auto one = item();
        QCOMPARE(one->status(), Status::notRegistered);
        QVERIFY(!QFileInfo::exists(one->folder()));
    }

    void anEntryThatTheDesktopStartsIsEnabled_data() { enabledEntries(); }
    void anEntryThatTheDesktopStartsIsEnabled()
    {
        QFETCH(QByteArray, keys);
        QFETCH(QStringList, desktops);
        const auto one = item(desktops);
        write(entryWith(keys));
        QCOMPARE(one->status(), Status::enabled);
    }

    void anEntryThatTheDesktopPassesOverRequiresApproval_data() { passedOverEntries(); }
    void anEntryThatTheDesktopPassesOverRequiresApproval()
    {
        QFETCH(QByteArray, keys);
        QFETCH(QStringList, desktops);
        const auto one = item(desktops);
        write(entryWith(keys));
        QCOMPARE(one->status(), Status::requiresApproval);
    }

    void anEntryThatStartsNothingIsNotRegistered_data()
    {
        QTest::addColumn<QByteArray>("text");
        const QByteArray start = "[Desktop Entry]\nType=Application\nName=B\n";
        QTest::newRow("program gone") << start + "Exec=/nowhere/brimwatch\n";
        QTest::newRow("tried program gone") << start + "Exec=true\nTryExec=/nowhere/brimwatch\n";
        QTest::newRow("a folder") << start + "Exec=/tmp\n";
        QTest::newRow("not on the path") << start + "Exec=no-such-program-anywhere\n";
        QTest::newRow("gone and hidden") << start + "Exec=/nowhere/brimwatch\nHidden=true\n";
        QTest::newRow("broken quotes") << start + "Exec=\"true\n";
        QTest::newRow("no program") << start;
        QTest::newRow("a link") << QByteArray("[Desktop Entry]\nType=Link\nExec=true\n");
        QTest::newRow("no type") << QByteArray("[Desktop Entry]\nExec=true\n");
        QTest::newRow("no group") << QByteArray("Type=Application\nExec=true\n");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("binary") << QByteArray("\x7f"
                                              "ELF\0\0\xff\xfe\n\0",
            10);
        QTest::newRow("binary in the group") << QByteArray("[Desktop Entry]\n\0=\xff\n\x80", 21);
        QTest::newRow("huge")
            << QByteArray(start + "Exec=true\n").leftJustified(qsizetype{3} * 1024 * 1024, '#');
    }
    void anEntryThatStartsNothingIsNotRegistered()
    {
        QFETCH(QByteArray, text);
        const auto one = item();
        write(text);
        QCOMPARE(one->status(), Status::notRegistered);
        QVERIFY(one->registerItem());
        QCOMPARE(one->status(), Status::enabled);
        QCOMPARE(program(), m_program);
    }

    void anEntryOfAnotherCaseIsNotOurs()
    {
        const auto one = item();
        write(entryWith(""));
        QVERIFY(QFile::rename(one->file(), one->file().replace(u"Brimwatch"_s, u"brimwatch"_s)));
        QCOMPARE(one->status(), Status::notRegistered);
    }

    void whereNothingCanBeWrittenTheItemIsNotFound()
    {
        // A file where a folder has to be, which stops root as well.
        const QString configHome = m_folder->filePath(u"config"_s);
        makeFile(configHome, "");
        const auto one = item();
        QCOMPARE(one->status(), Status::notFound);
        const auto registered = one->registerItem();
        QVERIFY(!registered);
        QVERIFY2(registered.error().contains(configHome), qPrintable(registered.error()));
        QVERIFY(one->unregisterItem());
        QCOMPARE(one->status(), Status::notFound);
    }

    void aConfigurationFolderThatIsALinkToNowhereIsNotFound()
    {
        QVERIFY(QFile::link(u"/nowhere/at/all"_s, m_folder->filePath(u"config"_s)));
        QCOMPARE(item()->status(), Status::notFound);
        QVERIFY(!item()->registerItem());
    }

    // The switch

    void theEntryIsWrittenWholeAndTakenAwayAgain()
    {
        const auto one = item();
        QVERIFY(one->registerItem());
        QCOMPARE(one->status(), Status::enabled);
        QCOMPARE(QDir(one->folder()).entryList(QDir::Files | QDir::Hidden),
            QStringList{QFileInfo(one->file()).fileName()});
        QVERIFY(one->file().endsWith("/config/autostart/" BRIMWATCH_IDENTIFIER ".desktop"_L1));
        QVERIFY(one->unregisterItem());
        QCOMPARE(one->status(), Status::notRegistered);
        QVERIFY(!QFileInfo::exists(one->file()));
        QVERIFY(one->unregisterItem());
    }

    void aProgramThatIsGoneIsNotRegistered()
    {
        const auto one = item();
        QVERIFY(QFile::remove(m_program));
        const auto registered = one->registerItem();
        QVERIFY(!registered);
        QVERIFY2(registered.error().contains(m_program), qPrintable(registered.error()));
        QVERIFY(!QFileInfo::exists(one->file()));
    }

    void switchingOnTakesAwayWhatPassesTheEntryOver_data() { passedOverEntries(); }
    void switchingOnTakesAwayWhatPassesTheEntryOver()
    {
        QFETCH(QByteArray, keys);
        QFETCH(QStringList, desktops);
        const auto one = item(desktops);
        write(entryWith(keys));
        QVERIFY(one->registerItem());
        QCOMPARE(one->status(), Status::enabled);
        // The program that somebody chose stays.
        QCOMPARE(program(), u"true"_s);
    }

    void switchingOnLeavesTheRestOfTheEntryAsItIs()
    {
        const auto one = item({u"ubuntu"_s, u"GNOME"_s});
        write("# Mine.\n"
              "[Desktop Entry]\n"
              "Type=Application\n"
              "Name=My name\n"
              "Name[de]=Mein Name \xff\n"
              "Exec=env A=b true --later %%\n"
              "X-GNOME-Autostart-enabled=false\n"
              "X-GNOME-Autostart-Delay=5\n"
              "OnlyShowIn=MATE;KDE;\n"
              "Hidden=true\n"
              "\n"
              "[Desktop Action a]\n"
              "Hidden=true\n");
        QVERIFY(one->registerItem());
        QCOMPARE(contents(),
            QByteArray("# Mine.\n"
                       "[Desktop Entry]\n"
                       "Type=Application\n"
                       "Name=My name\n"
                       "Name[de]=Mein Name \xff\n"
                       "Exec=env A=b true --later %%\n"
                       "X-GNOME-Autostart-Delay=5\n"
                       "OnlyShowIn=MATE;KDE;GNOME;\n"
                       "\n"
                       "[Desktop Action a]\n"
                       "Hidden=true\n"));
    }

    void otherDesktopsThatTheEntryAvoidsAreStillAvoided()
    {
        const auto one = item({u"MATE"_s});
        write(entryWith("NotShowIn=KDE;MATE;XFCE;\n"));
        QVERIFY(one->registerItem());
        QVERIFY(contents().contains("\nNotShowIn=KDE;XFCE;\n"));
    }

    void anEntryWhoseProgramIsGoneGetsOurs()
    {
        const auto one = item();
        write("[Desktop Entry]\nType=Application\nName=Mine\nTryExec=/old/brimwatch\n"
              "Exec=/old/brimwatch\nComment=kept\n");
        QVERIFY(one->registerItem());
        QCOMPARE(one->status(), Status::enabled);
        QCOMPARE(contents(),
            QByteArray("[Desktop Entry]\nType=Application\nName=Mine\nTryExec=" + m_program.toUtf8()
                + "\nExec=" + m_program.toUtf8() + "\nComment=kept\n"));
    }

    void whatStandsInTheEntrysPlaceIsNoTrap_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char *kind : {"fifo", "dangling link", "link to a device", "link to itself"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void whatStandsInTheEntrysPlaceIsNoTrap()
    {
        QFETCH(QString, kind);
        const auto one = item();
        QVERIFY(QDir().mkpath(one->folder()));
        if (kind == "fifo"_L1)
            QCOMPARE(mkfifo(qPrintable(one->file()), 0600), 0);
        else if (kind == "dangling link"_L1)
            QVERIFY(QFile::link(m_folder->filePath(u"none/at/all"_s), one->file()));
        else if (kind == "link to a device"_L1)
            QVERIFY(QFile::link(u"/dev/null"_s, one->file()));
        else
            QVERIFY(QFile::link(one->file(), one->file()));
        QCOMPARE(one->status(), Status::notRegistered);
        QVERIFY(one->registerItem());
        QCOMPARE(one->status(), Status::enabled);
        QVERIFY(!QFileInfo(one->file()).isSymLink());
        QVERIFY(one->unregisterItem());
        QVERIFY(!QFileInfo::exists(one->file()));
    }

    void aFolderInTheEntrysPlaceStays()
    {
        const auto one = item();
        QVERIFY(QDir().mkpath(one->file() + "/kept"_L1));
        QCOMPARE(one->status(), Status::notRegistered);
        const auto registered = one->registerItem();
        QVERIFY(!registered);
        QVERIFY2(registered.error().contains(one->file()), qPrintable(registered.error()));
        QVERIFY(!one->unregisterItem());
        QVERIFY(QFileInfo(one->file() + "/kept"_L1).isDir());
    }

    void anEntryThatIsKeptElsewhereStaysThere()
    {
        const auto one = item();
        const QString elsewhere = m_folder->filePath(u"dotfiles.desktop"_s);
        makeFile(elsewhere, entryWith("Hidden=true\n"));
        QVERIFY(QDir().mkpath(one->folder()));
        QVERIFY(QFile::link(elsewhere, one->file()));
        QCOMPARE(one->status(), Status::requiresApproval);
        QVERIFY(one->registerItem());
        QCOMPARE(one->status(), Status::enabled);
        QVERIFY(QFileInfo(one->file()).isSymLink());
        QVERIFY(QFileInfo(elsewhere).size() > 0);
        QVERIFY(one->unregisterItem());
        QVERIFY(QFileInfo::exists(elsewhere));
        QVERIFY(!QFileInfo(one->file()).isSymLink());
    }

    // What others make of the entry

    void theEntryIsValidAndStartsTheProgramWhereverItStands_data()
    {
        QTest::addColumn<QString>("folderName");
        QTest::addColumn<bool>("readByDex");
        QTest::newRow("plain") << u"bin"_s << true;
        QTest::newRow("space") << u"My Programs"_s << true;
        QTest::newRow("single quote") << u"it's"_s << true;
        QTest::newRow("shell") << u"a;b|c>d<e&f#g*h?(i)~"_s << true;
        QTest::newRow("equals sign") << u"a=b"_s << true;
        QTest::newRow("other letters") << u"Größe 🧠"_s << true;
        QTest::newRow("spaces at the ends") << u"  a  "_s << true;
        QTest::newRow("brackets") << u"[Desktop Entry]"_s << true;
        QTest::newRow("ideographic space") << u"My\u3000Programs"_s << true;
        QTest::newRow("no-break space") << u"My\u00a0Programs\u202f"_s << true;
        QTest::newRow("next line") << u"My\u0085Programs\u2028"_s << true;
        QTest::newRow("tab") << u"My\tPrograms"_s << false;
        QTest::newRow("line feed") << u"My\nPrograms"_s << false;
        QTest::newRow("carriage return") << u"My\rPrograms\r"_s << false;
        QTest::newRow("blank at the end") << u"bin"_s << false;
        // dex 0.9 leaves what is escaped inside of quotes as it stands.
        QTest::newRow("quotes") << u"it's \"mine\""_s << false;
        QTest::newRow("backslash") << u"a\\b\\\\c\\"_s << false;
        QTest::newRow("dollar") << u"$HOME and ${HOME}"_s << false;
        QTest::newRow("backtick") << u"`touch here`"_s << false;
        QTest::newRow("percent") << u"100%"_s << false;
        QTest::newRow("field codes") << u"%f %u %% %"_s << false;
        QTest::newRow("all of it") << u" \"'\\$`%f;&=[é] "_s << false;
    }
    void theEntryIsValidAndStartsTheProgramWhereverItStands()
    {
        QFETCH(QString, folderName);
        QFETCH(bool, readByDex);
        QVERIFY(QDir(m_folder->path()).mkpath(folderName));
        // dex does not undo the escape of a blank at the end either.
        m_program
            = m_folder->filePath(folderName) + (readByDex ? "/brim watch"_L1 : "/brim watch "_L1);
        makeProgram(m_program);
        const auto one = item();
        QVERIFY(one->registerItem());
        QCOMPARE(one->status(), Status::enabled);
        run(u"desktop-file-validate"_s, {one->file()});

        // GLib reads entries for GNOME, MATE, Cinnamon and XFCE; dex for window managers.
        const QList<std::pair<QString, QStringList>> readers{
            {u"gio"_s, {u"launch"_s, one->file()}},
            {u"dex"_s, {u"--wait"_s, one->file()}},
        };
        for (const auto &[reader, arguments] : readers) {
            if (reader == "dex"_L1 && !readByDex)
                continue;
            run(reader, arguments);
            QTRY_VERIFY2(QFileInfo::exists(started()), qPrintable(reader));
            QVERIFY(QFile::remove(started()));
        }
        QVERIFY(one->unregisterItem());
        QCOMPARE(one->status(), Status::notRegistered);
    }

    void aChangedEntryIsStillValid()
    {
        const auto one = item({u"GNOME"_s});
        write("[Desktop Entry]\nType=Application\nExec=/old\nOnlyShowIn=KDE;\nHidden=true");
        QVERIFY(one->registerItem());
        QCOMPARE(one->status(), Status::enabled);
        run(u"desktop-file-validate"_s, {one->file()});
    }

    void aReaderOfTheFolderPassesOverWhatIsSwitchedOff_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<bool>("starts");
        QTest::newRow("as it was written") << QByteArray() << true;
        QTest::newRow("hidden") << QByteArray("Hidden=true\n") << false;
        QTest::newRow("other desktop") << QByteArray("OnlyShowIn=KDE;\n") << false;
        QTest::newRow("not here") << QByteArray("NotShowIn=XFCE;\n") << false;
    }
    void aReaderOfTheFolderPassesOverWhatIsSwitchedOff()
    {
        QFETCH(QByteArray, keys);
        QFETCH(bool, starts);
        const auto one = item({u"XFCE"_s});
        QVERIFY(one->registerItem());
        write(contents() + keys);
        QCOMPARE(one->status(), starts ? Status::enabled : Status::requiresApproval);
        const QString output = run(u"dex"_s,
            {u"--autostart"_s, u"--dry-run"_s, u"--environment"_s, u"XFCE"_s, u"--search-paths"_s,
                one->folder()});
        QCOMPARE(output.contains(m_program), starts);
    }

    // The settings page

    void theDesktopsOwnPanelOpens_data()
    {
        QTest::addColumn<QStringList>("desktops");
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QString>("command");
        const QStringList all{u"xfce4-session-settings"_s, u"mate-session-properties"_s,
            u"lxqt-config-session"_s, u"lxsession-edit"_s, u"systemsettings"_s,
            u"systemsettings5"_s, u"kcmshell5"_s, u"cinnamon-settings"_s,
            u"budgie-desktop-settings"_s, u"gnome-session-properties"_s, u"gnome-tweaks"_s};
        QTest::newRow("XFCE") << QStringList{u"XFCE"_s} << all << u"xfce4-session-settings"_s;
        QTest::newRow("MATE") << QStringList{u"MATE"_s} << all << u"mate-session-properties"_s;
        QTest::newRow("LXQt") << QStringList{u"LXQt"_s} << all << u"lxqt-config-session"_s;
        QTest::newRow("LXDE") << QStringList{u"LXDE"_s} << all << u"lxsession-edit"_s;
        QTest::newRow("KDE") << QStringList{u"KDE"_s} << all << u"systemsettings kcm_autostart"_s;
        QTest::newRow("older KDE")
            << QStringList{u"KDE"_s} << QStringList{u"kcmshell5"_s} << u"kcmshell5 kcm_autostart"_s;
        QTest::newRow("Cinnamon") << QStringList{u"X-Cinnamon"_s} << all
                                  << u"cinnamon-settings startup"_s;
        QTest::newRow("Budgie") << QStringList{u"Budgie"_s, u"GNOME"_s} << all
                                << u"budgie-desktop-settings"_s;
        QTest::newRow("GNOME") << QStringList{u"ubuntu"_s, u"GNOME"_s}
                               << QStringList{u"gnome-tweaks"_s, u"xfce4-session-settings"_s}
                               << u"gnome-tweaks"_s;
        QTest::newRow("GNOME without tweaks")
            << QStringList{u"GNOME"_s} << QStringList{u"xfce4-session-settings"_s} << QString();
        QTest::newRow("a window manager") << QStringList{u"sway"_s} << all << QString();
        QTest::newRow("unknown") << QStringList() << all << QString();
    }
    void theDesktopsOwnPanelOpens()
    {
        QFETCH(QStringList, desktops);
        QFETCH(QStringList, installed);
        QFETCH(QString, command);
        const QDir programs(m_folder->filePath(u"programs"_s));
        QVERIFY(QDir().mkpath(programs.path()));
        for (const QString &name : installed)
            makeProgram(programs.filePath(name));
        qputenv("PATH", QFile::encodeName(programs.path()));
        const auto one = item(desktops);
        one->openSystemSettings();
        if (command.isEmpty()) {
            QCOMPARE(m_opener.opened, QList<QUrl>{QUrl::fromLocalFile(one->folder())});
            QVERIFY(!QFileInfo::exists(started()));
            return;
        }
        QCOMPARE(m_opener.opened, QList<QUrl>());
        QTRY_COMPARE(contentsOf(started()), QString(programs.filePath(command) + u'\n').toUtf8());
    }

    void aFullDiskIsAnErrorAndLeavesTheEntry()
    {
        const QByteArray before(
            "[Desktop Entry]\nType=Application\nName=B\nExec=true\nHidden=true\n");
        write(before);
        {
            const test::FullDisk disk;
            const auto registered = item()->registerItem();
            QVERIFY(!registered);
            QVERIFY(registered.error().contains(entryFile()));
        }
        QCOMPARE(contents(), before);
        QVERIFY(item()->registerItem());
        QCOMPARE(item()->status(), Status::enabled);
    }

private:
    static void enabledEntries()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QStringList>("desktops");
        const QStringList xfce{u"XFCE"_s};
        QTest::newRow("plain") << QByteArray() << QStringList();
        QTest::newRow("not hidden") << QByteArray("Hidden=false\n") << xfce;
        QTest::newRow("hidden from menus") << QByteArray("NoDisplay=true\n") << xfce;
        QTest::newRow("no boolean") << QByteArray("Hidden=TRUE\n") << xfce;
        QTest::newRow("other case of the key") << QByteArray("hidden=true\n") << xfce;
        QTest::newRow("hidden elsewhere")
            << QByteArray("[Desktop Action a]\nHidden=true\n") << xfce;
        QTest::newRow("the last counts") << QByteArray("Hidden=true\nHidden=false\n") << xfce;
        QTest::newRow("enabled for GNOME")
            << QByteArray("X-GNOME-Autostart-enabled=true\n") << QStringList{u"GNOME"_s};
        QTest::newRow("shown here") << QByteArray("OnlyShowIn=KDE;XFCE;\n") << xfce;
        QTest::newRow("shown in one of ours")
            << QByteArray("OnlyShowIn=GNOME\n") << QStringList{u"ubuntu"_s, u"GNOME"_s};
        QTest::newRow("not shown elsewhere") << QByteArray("NotShowIn=KDE;\n") << xfce;
        QTest::newRow("not shown in another case") << QByteArray("NotShowIn=xfce;\n") << xfce;
        QTest::newRow("not shown in an unknown one")
            << QByteArray("NotShowIn=KDE;\n") << QStringList();
        QTest::newRow("our first name decides")
            << QByteArray("OnlyShowIn=ubuntu;\nNotShowIn=GNOME;\n")
            << QStringList{u"ubuntu"_s, u"GNOME"_s};
        QTest::newRow("wanted here too")
            << QByteArray("OnlyShowIn=KDE;\nX-XFCE-Autostart-Override=true\n") << xfce;
    }
    static void passedOverEntries()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QStringList>("desktops");
        const QStringList xfce{u"XFCE"_s};
        QTest::newRow("hidden") << QByteArray("Hidden=true\n") << xfce;
        QTest::newRow("hidden, unknown desktop") << QByteArray("Hidden=true\n") << QStringList();
        QTest::newRow("hidden twice") << QByteArray("Hidden=true\nHidden=true\n") << xfce;
        QTest::newRow("spaces") << QByteArray(" Hidden = true \r\n") << xfce;
        QTest::newRow("disabled for GNOME")
            << QByteArray("X-GNOME-Autostart-enabled=false\n") << QStringList{u"GNOME"_s};
        QTest::newRow("only elsewhere") << QByteArray("OnlyShowIn=KDE;\n") << xfce;
        QTest::newRow("only nowhere") << QByteArray("OnlyShowIn=\n") << xfce;
        QTest::newRow("only in another case") << QByteArray("OnlyShowIn=xfce;\n") << xfce;
        QTest::newRow("only somewhere, unknown desktop")
            << QByteArray("OnlyShowIn=KDE;\n") << QStringList();
        QTest::newRow("not here") << QByteArray("NotShowIn=XFCE;\n") << xfce;
        QTest::newRow("not in one of ours")
            << QByteArray("NotShowIn=GNOME\n") << QStringList{u"ubuntu"_s, u"GNOME"_s};
        QTest::newRow("our first name decides")
            << QByteArray("NotShowIn=ubuntu;\nOnlyShowIn=GNOME;\n")
            << QStringList{u"ubuntu"_s, u"GNOME"_s};
        QTest::newRow("an override of another desktop")
            << QByteArray("OnlyShowIn=KDE;\nX-XFCE-Autostart-Override=true\n")
            << QStringList{u"MATE"_s};
        QTest::newRow("all at once") << QByteArray(
            "Hidden=true\nX-GNOME-Autostart-enabled=false\nOnlyShowIn=KDE;\n"
            "NotShowIn=XFCE;\n") << xfce;
    }
    static QByteArray entryWith(const QByteArray &keys)
    {
        return "[Desktop Entry]\nType=Application\nName=B\nExec=true\n" + keys;
    }

    std::unique_ptr<AutostartLoginItem> item(const QStringList &desktops = {})
    {
        return std::make_unique<AutostartLoginItem>(
            AutostartLoginItem::Surroundings{.configHome = m_folder->filePath(u"config"_s),
                .program = m_program,
                .currentDesktops = desktops},
            m_opener);
    }
    QString entryFile() { return item()->file(); }
    QString started() const { return m_folder->filePath(u"started"_s); }

    void write(const QByteArray &text)
    {
        QVERIFY(QDir().mkpath(item()->folder()));
        makeFile(entryFile(), text);
    }
    QByteArray contents() { return contentsOf(entryFile()); }
    /// What the entry starts.
    QString program()
    {
        const auto entry = DesktopEntryText::read(entryFile());
        return entry ? commandOfExec(entry->value("Exec"_L1)).value(0) : QString();
    }

    static void makeFile(const QString &path, const QByteArray &text)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), text.size());
    }
    static QByteArray contentsOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// A program that writes down how it was called, at once.
    void makeProgram(const QString &path) const
    {
        makeFile(path,
            "#!/bin/sh\nPATH=/usr/bin:/bin\necho \"$0${*:+ $*}\" >'" + started().toUtf8()
                + ".new'\nmv '" + started().toUtf8() + ".new' '" + started().toUtf8() + "'\n");
        QVERIFY(
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    /// Runs to the end; everything that it wrote.
    static QString run(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        constexpr std::chrono::milliseconds timeout = std::chrono::minutes(1);
        const bool ended = process.waitForFinished(static_cast<int>(timeout.count()));
        const QString output = QString::fromUtf8(process.readAll());
        if (!ended || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
            QTest::qFail(qPrintable(program + u": "_s + process.errorString() + u' ' + output),
                __FILE__, __LINE__);
        return output;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_program;
    test::FakeOpener m_opener;
    QByteArray m_path;
};

QTEST_GUILESS_MAIN(AutostartLoginItemTest)
#include "autostart_login_item_test.moc"
