#include "platform/linux/desktop_opener.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;

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

private:
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
    void write(const QString &name, const QByteArray &keys)
    {
        QFile file(m_folder->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Desktop Entry]\nType=Application\n" + keys);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(DesktopOpenerTest)
#include "desktop_opener_test.moc"
