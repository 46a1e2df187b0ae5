#include "core/read_file.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

namespace {

constexpr qint64 largest = 8;

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

void makeFifo(const QString &path)
{
    QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
}

} // namespace

class ReadFileTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;

    QString path(const QString &name) const { return m_folder.filePath(name); }

private Q_SLOTS:
    void aFileUpToTheBoundIsReadWhole_data();
    void aFileUpToTheBoundIsReadWhole();
    void aLinkToAFileIsFollowed();
    void aNameInAnOpenFolderIsRead();
    void aFileIsReadInPieces();
    void whatIsNoSuchFileIsAnError_data();
    void whatIsNoSuchFileIsAnError();
    void aFileThatDoesNotTellItsSizeIsBounded();
    void aFifoThatTakesTheFilesPlaceIsNotWaitedFor();
};

void ReadFileTest::aFileUpToTheBoundIsReadWhole_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("short") << QByteArray("a\0b", 3);
    QTest::newRow("as large as allowed") << QByteArray("12345678");
}

void ReadFileTest::aFileUpToTheBoundIsReadWhole()
{
    QFETCH(QByteArray, content);
    write(path(u"file"_s), content);
    const auto read = readFile(path(u"file"_s), largest);
    QVERIFY(read);
    QCOMPARE(*read, content);
}

void ReadFileTest::aLinkToAFileIsFollowed()
{
    write(path(u"target"_s), "linked");
    QVERIFY(QFile::link(path(u"target"_s), path(u"link"_s)));
    QCOMPARE(readFile(path(u"link"_s), largest).value_or("none"), "linked");
}

void ReadFileTest::aNameInAnOpenFolderIsRead()
{
    write(path(u"inside"_s), "inside");
    const int folder
        = ::open(QFile::encodeName(m_folder.path()).constData(), O_DIRECTORY | O_RDONLY);
    QVERIFY(folder >= 0);
    QCOMPARE(readFile(folder, "inside", largest).value_or("none"), "inside");
    QVERIFY(readFile(folder, "outside", largest) == fail(ReadFileError::NotFound));
    ::close(folder);
}

void ReadFileTest::aFileIsReadInPieces()
{
    QByteArray content;
    for (int i = 0; i < 20'000; ++i)
        content += QByteArray::number(i);
    write(path(u"file"_s), content);
    QByteArray read;
    int pieces = 0;
    const auto visit = [&](QByteArrayView piece) {
        read += piece;
        ++pieces;
    };
    QVERIFY(readPieces(path(u"file"_s), content.size(), visit));
    QCOMPARE(read, content);
    QVERIFY(pieces > 2);
    QVERIFY(
        readPieces(path(u"file"_s), content.size() - 1, visit) == fail(ReadFileError::TooLarge));
    QVERIFY(readPieces(path(u"missing"_s), largest, visit) == fail(ReadFileError::NotFound));
    makeFifo(path(u"queue"_s));
    QVERIFY(readPieces(path(u"queue"_s), largest, visit) == fail(ReadFileError::NotRegular));
    QCOMPARE(read, content);
}

void ReadFileTest::whatIsNoSuchFileIsAnError_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<ReadFileError>("error");
    write(path(u"too large"_s), "123456789");
    makeFifo(path(u"fifo"_s));
    QVERIFY(QFile::link(path(u"fifo"_s), path(u"link to fifo"_s)));
    QVERIFY(QFile::link(path(u"nowhere"_s), path(u"dangling"_s)));
    QVERIFY(QFile::link(path(u"loop"_s), path(u"loop"_s)));
    QTest::newRow("nothing") << path(u"nothing"_s) << ReadFileError::NotFound;
    QTest::newRow("nothing in a file") << path(u"too large/nothing"_s) << ReadFileError::NotFound;
    QTest::newRow("dangling link") << path(u"dangling"_s) << ReadFileError::NotFound;
    QTest::newRow("folder") << m_folder.path() << ReadFileError::NotRegular;
    QTest::newRow("FIFO") << path(u"fifo"_s) << ReadFileError::NotRegular;
    QTest::newRow("link to a FIFO") << path(u"link to fifo"_s) << ReadFileError::NotRegular;
    QTest::newRow("device") << u"/dev/zero"_s << ReadFileError::NotRegular;
    QTest::newRow("too large") << path(u"too large"_s) << ReadFileError::TooLarge;
    QTest::newRow("link to itself") << path(u"loop"_s) << ReadFileError::Unreadable;
    if (::geteuid() != 0) {
        write(path(u"secret"_s), "secret");
        QVERIFY(QFile::setPermissions(path(u"secret"_s), QFileDevice::Permissions()));
        QTest::newRow("forbidden") << path(u"secret"_s) << ReadFileError::Unreadable;
    }
}

void ReadFileTest::whatIsNoSuchFileIsAnError()
{
    QFETCH(QString, path);
    QFETCH(ReadFileError, error);
    const auto read = readFile(path, largest);
    QVERIFY(!read);
    QCOMPARE(read.error(), error);
}

void ReadFileTest::aFileThatDoesNotTellItsSizeIsBounded()
{
    const QString file = u"/proc/self/status"_s;
    if (!QFileInfo::exists(file))
        QSKIP("this system has no file of that kind");
    QCOMPARE(QFileInfo(file).size(), 0);
    QVERIFY(readFile(file, largest) == fail(ReadFileError::LargerThanItsSize));
}

void ReadFileTest::aFifoThatTakesTheFilesPlaceIsNotWaitedFor()
{
    write(path(u"regular"_s), "regular");
    makeFifo(path(u"pipe"_s));
    const QString changing = path(u"changing"_s);
    QVERIFY(QFile::link(path(u"regular"_s), changing));
    std::atomic<bool> done = false;
    std::thread changes([&] {
        const QByteArray link = QFile::encodeName(path(u"new"_s));
        for (bool pipe = true; !done; pipe = !pipe) {
            if (::symlink(pipe ? "pipe" : "regular", link.constData()) != 0
                || ::rename(link.constData(), QFile::encodeName(changing).constData()) != 0)
                qFatal("the link cannot be changed");
        }
    });
    constexpr int enough = 50'000;
    int wrong = 0;
    for (int i = 0; i < enough; ++i) {
        const auto read = readFile(changing, largest);
        if (read ? *read != "regular" : read.error() != ReadFileError::NotRegular)
            ++wrong;
    }
    done = true;
    changes.join();
    QCOMPARE(wrong, 0);
}

QTEST_GUILESS_MAIN(ReadFileTest)
#include "read_file_test.moc"
