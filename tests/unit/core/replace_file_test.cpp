#include "core/replace_file.h"
#include "support/full_disk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

class ReplaceFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFileIsMadeAndReplaced()
    {
        QVERIFY(replaceFile(path(), "one"));
        QVERIFY(replaceFile(path(), "two"));
        QCOMPARE(content(), QByteArray("two"));
    }

    void aFullDiskIsAnErrorAndLeavesTheFile()
    {
        QVERIFY(replaceFile(path(), "before"));
        {
            const test::FullDisk disk;
            const auto replaced = replaceFile(path(), "after");
            QVERIFY(!replaced);
            QVERIFY(!replaced.error().isEmpty());
        }
        QCOMPARE(content(), QByteArray("before"));
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files).size(), 1);
    }

    void aLinkToAFileIsFollowed()
    {
        const QString link = m_folder.filePath(u"link"_s);
        QVERIFY(replaceFile(path(), "before"));
        QVERIFY(QFile::link(path(), link));
        QVERIFY(replaceFile(link, "after"));
        QCOMPARE(content(), QByteArray("after"));
        QVERIFY(QFileInfo(link).isSymLink());
        QVERIFY(QFile::remove(link));
    }

    void aFolderStays()
    {
        const QString folder = m_folder.filePath(u"folder"_s);
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(!replaceFile(folder, "after"));
        QVERIFY(QFileInfo(folder).isDir());
    }

private:
    QString path() const { return m_folder.filePath(u"file"_s); }
    QByteArray content() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(ReplaceFileTest)
#include "replace_file_test.moc"
