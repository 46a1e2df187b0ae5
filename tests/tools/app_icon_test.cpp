#include <QDataStream>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Chunk {
    QByteArray letters;
    QByteArray content;
};

/// What an icns file holds; nothing when it is none.
QList<Chunk> readIcon(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray all = file.readAll();
    const auto lengthAt = [&all](qsizetype at) {
        quint32 length = 0;
        QDataStream(all.mid(at, 4)) >> length;
        return static_cast<qsizetype>(length);
    };
    if (!all.startsWith("icns") || lengthAt(4) != all.size())
        return {};
    QList<Chunk> chunks;
    qsizetype at = 8;
    while (at < all.size()) {
        const qsizetype length = lengthAt(at + 4);
        if (length <= 8 || at + length > all.size())
            return {};
        chunks.append({.letters = all.mid(at, 4), .content = all.mid(at + 8, length - 8)});
        at += length;
    }
    return chunks;
}

int run(const QStringList &arguments)
{
    return QProcess::execute(QStringLiteral(BRIMWATCH_APP_ICON), arguments);
}

} // namespace

class AppIconTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theIconHoldsOurDrawingInEverySizeThatIsAskedFor();
    void aPictureIsAsLargeAsItIsAskedFor();
    void whatIsNoDrawingMakesNoIcon();
    void aWrongUseIsSaid();

private:
    QTemporaryDir m_folder;
};

void AppIconTest::theIconHoldsOurDrawingInEverySizeThatIsAskedFor()
{
    const QString path = m_folder.filePath(u"icon.icns"_s);
    QCOMPARE(run({QStringLiteral(BRIMWATCH_DRAWING), path}), 0);
    const auto chunks = readIcon(path);
    QList<std::pair<QByteArray, int>> sides;
    for (const auto &chunk : chunks) {
        const QImage picture = QImage::fromData(chunk.content, "PNG");
        QCOMPARE(picture.width(), picture.height());
        sides.append({chunk.letters, picture.width()});
        // The drawing leaves its corners free and covers its middle.
        QCOMPARE(picture.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(picture.pixelColor(picture.width() / 2, picture.height() / 2).alpha(), 255);
    }
    const QList<std::pair<QByteArray, int>> expected{{"ic11", 32}, {"ic12", 64}, {"ic07", 128},
        {"ic13", 256}, {"ic08", 256}, {"ic14", 512}, {"ic09", 512}, {"ic10", 1024}};
    QCOMPARE(sides, expected);
}

void AppIconTest::aPictureIsAsLargeAsItIsAskedFor()
{
    for (const int side : {16, 22, 512}) {
        const QString path = m_folder.filePath(u"icon.png"_s);
        QCOMPARE(run({QStringLiteral(BRIMWATCH_DRAWING), path, QString::number(side)}), 0);
        const QImage picture(path, "PNG");
        QCOMPARE(picture.size(), QSize(side, side));
        QCOMPARE(picture.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(picture.pixelColor(side / 2, side / 2).alpha(), 255);
    }
}

void AppIconTest::whatIsNoDrawingMakesNoIcon()
{
    const QString path = m_folder.filePath(u"none.icns"_s);
    QCOMPARE(run({m_folder.filePath(u"missing.svg"_s), path}), 1);
    QVERIFY(!QFile::exists(path));
    QCOMPARE(run({QStringLiteral(BRIMWATCH_DRAWING), m_folder.filePath(u"no/folder.icns"_s)}), 1);
}

void AppIconTest::aWrongUseIsSaid()
{
    QCOMPARE(run({}), 2);
    for (const auto &side : {u"0"_s, u"-1"_s, u"large"_s, u"4097"_s}) {
        const QString path = m_folder.filePath(u"wrong.png"_s);
        QCOMPARE(run({QStringLiteral(BRIMWATCH_DRAWING), path, side}), 2);
        QVERIFY(!QFile::exists(path));
    }
}

QTEST_GUILESS_MAIN(AppIconTest)
#include "app_icon_test.moc"
