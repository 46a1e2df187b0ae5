#include "platform/linux/desktop/desktop_opener.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;

/// Takes what Qt is asked to open, instead of the desktop's own programs.
class FileHandler : public QObject {
    Q_OBJECT

public:
    FileHandler() { QDesktopServices::setUrlHandler(u"file"_s, this, "open"); }
    ~FileHandler() override { QDesktopServices::unsetUrlHandler(u"file"_s); }

    const QList<QUrl> &opened() const { return m_opened; }

public Q_SLOTS:
    void open(const QUrl &url) { m_opened.append(url); }

private:
    QList<QUrl> m_opened;
};

class DesktopOpenerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        QVERIFY(QDir(m_folder->path()).mkpath(u"home"_s));
        QVERIFY(QDir(m_folder->path()).mkpath(u"system"_s));
    }

    void theUsersOwnEntryComesBeforeTheSystems()
    {
        write(u"home/antigravity.desktop"_s, "Exec=true home\n");
        write(u"system/antigravity.desktop"_s, "Exec=true system\n");
        QCOMPARE(found(), (QStringList{u"true"_s, u"home"_s}));
    }

    void aHiddenEntryOfTheUserHidesTheSystems()
    {
        write(u"home/antigravity.desktop"_s, "Exec=true\nHidden=true\n");
        write(u"system/antigravity.desktop"_s, "Exec=true\n");
        QVERIFY(!findAntigravity(directories()));
    }

    void entriesThatCannotBeStartedAreSkipped_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::newRow("hidden") << QByteArray("Exec=true wrong\nHidden=true\n");
        QTest::newRow("not in menus") << QByteArray("Exec=true wrong\nNoDisplay=true\n");
        QTest::newRow("program gone") << QByteArray("Exec=/nowhere/ide wrong\n");
        QTest::newRow("tried program gone")
            << QByteArray("Exec=true wrong\nTryExec=/nowhere/ide\n");
        QTest::newRow("no Exec") << QByteArray("Name=Antigravity\n");
        QTest::newRow("not UTF-8") << QByteArray("\xff\xfe\xfd");
    }
    void entriesThatCannotBeStartedAreSkipped()
    {
        QFETCH(QByteArray, keys);
        write(u"home/antigravity-a.desktop"_s, keys);
        write(u"home/antigravity-b.desktop"_s, "Exec=true right\n");
        QCOMPARE(found(), (QStringList{u"true"_s, u"right"_s}));
    }

    void anEntryInAFolderWithABlankOfAnotherScriptIsFound()
    {
        const QString program = m_folder->filePath(u"My\u3000\u00a0IDE/ide"_s);
        QVERIFY(QDir().mkpath(QFileInfo(program).path()));
        QVERIFY(QFile::link(u"/bin/true"_s, program));
        write(u"home/antigravity.desktop"_s, "Exec=" + program.toUtf8() + " %F\n");
        QCOMPARE(found(), QStringList{program});
    }

    void namesMatchWhateverTheirCase()
    {
        write(u"system/Antigravity.desktop"_s, "Exec=true\n");
        QCOMPARE(found(), QStringList{u"true"_s});
    }

    void otherFilesAreNoEntries()
    {
        write(u"system/antigravity.desktop.bak"_s, "Exec=true\n");
        write(u"system/my-antigravity.desktop"_s, "Exec=true\n");
        QVERIFY(QDir(m_folder->path()).mkpath(u"system/antigravity.desktop"_s));
        QVERIFY(!findAntigravity(directories()));
    }

    void keysOfOtherGroupsDoNotCount()
    {
        write(u"system/antigravity.desktop"_s,
            "Exec=true right\n[Desktop Action new]\nExec=true wrong\n");
        QCOMPARE(found(), (QStringList{u"true"_s, u"right"_s}));
    }

    void anEntryOfAnotherTypeIsNone()
    {
        QFile file(m_folder->filePath(u"system/antigravity.desktop"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Desktop Entry]\nType=Link\nExec=true\nURL=http://127.0.0.1/\n");
        file.close();
        QVERIFY(!findAntigravity(directories()));
    }

    void theInstallersOwnPathsAreKnownInTheirOrder()
    {
        QCOMPARE(installedPaths(),
            (QStringList{u"/Applications/Antigravity IDE.app"_s,
                u"/Applications/Antigravity-IDE.app"_s, u"/Applications/Antigravity.app"_s,
                u"/Applications/Google Antigravity.app"_s}));
    }

    void theFirstPathThatExistsIsOpened_data()
    {
        QTest::addColumn<QList<int>>("existing");
        QTest::addColumn<int>("opened");
        QTest::newRow("all") << QList<int>{0, 1, 2, 3} << 0;
        QTest::newRow("all but the first") << QList<int>{1, 2, 3} << 1;
        QTest::newRow("the last two") << QList<int>{2, 3} << 2;
        QTest::newRow("the last") << QList<int>{3} << 3;
    }
    void theFirstPathThatExistsIsOpened()
    {
        QFETCH(const QList<int>, existing);
        QFETCH(const int, opened);
        const QStringList paths = pathsHere();
        for (const int i : existing)
            QVERIFY(QDir().mkpath(paths.at(i)));
        // The entry is of use only where none of them exists.
        const QString started = writeStartableEntry();
        DesktopOpener opener(paths, [this] { return directories(); });
        FileHandler handler;
        QVERIFY(opener.openAntigravity());
        QCOMPARE(handler.opened(), QList<QUrl>{QUrl::fromLocalFile(paths.at(opened))});
        QVERIFY(!QFile::exists(started));
    }

    void withoutAnyOfThePathsTheDesktopEntryIsStarted()
    {
        const QString started = writeStartableEntry();
        DesktopOpener opener(pathsHere(), [this] { return directories(); });
        FileHandler handler;
        QVERIFY(opener.openAntigravity());
        QTRY_VERIFY(QFile::exists(started));
        QVERIFY(handler.opened().isEmpty());
    }

    void anEntryThatCameLaterIsFound()
    {
        DesktopOpener opener(pathsHere(), [this] { return directories(); });
        QVERIFY(!opener.openAntigravity());
        const QString started = writeStartableEntry();
        QVERIFY(opener.openAntigravity());
        QTRY_VERIFY(QFile::exists(started));
    }

    void nothingIsOpenedWhereNothingIsInstalled()
    {
        DesktopOpener opener(pathsHere(), [this] { return directories(); });
        FileHandler handler;
        QVERIFY(!opener.openAntigravity());
        QVERIFY(handler.opened().isEmpty());
    }

    void aFolderThatIsNotThereIsNotOpened()
    {
        DesktopOpener opener(pathsHere(), [this] { return directories(); });
        FileHandler handler;
        const auto there = QUrl::fromLocalFile(m_folder->filePath(u"home"_s));
        opener.openUrl(QUrl::fromLocalFile(m_folder->filePath(u"gone"_s)));
        opener.openUrl(there);
        QCOMPARE(handler.opened(), QList<QUrl>{there});
    }

private:
    /// Four paths as those of the installers, in a folder of our own where none exists.
    QStringList pathsHere() const
    {
        QStringList paths = installedPaths();
        for (QString &path : paths)
            path.prepend(m_folder->path());
        return paths;
    }
    /// Writes an entry whose program makes the file returned, in its working directory.
    QString writeStartableEntry() const
    {
        write(u"system/antigravity.desktop"_s,
            "Exec=touch started\nPath=" + QFile::encodeName(m_folder->path()) + "\n");
        return m_folder->filePath(u"started"_s);
    }
    QStringList directories() const
    {
        return {m_folder->filePath(u"home"_s), m_folder->filePath(u"nowhere"_s),
            m_folder->filePath(u"system"_s)};
    }
    QStringList found() const
    {
        const auto entry = findAntigravity(directories());
        return entry ? entry->command : QStringList();
    }
    void write(const QString &name, const QByteArray &keys) const
    {
        QFile file(m_folder->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Desktop Entry]\nType=Application\n" + keys);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(DesktopOpenerTest)
#include "desktop_opener_test.moc"
