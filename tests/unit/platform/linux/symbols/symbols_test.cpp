#include "platform/linux/symbols/svg_symbols.h"

#include <QFile>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace brimwatch::platform;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto allWeights
    = {SymbolWeight::Regular, SymbolWeight::Medium, SymbolWeight::Semibold, SymbolWeight::Bold};
constexpr auto viewSizes = {10.0, 12.0, 13.0, 36.0};

SymbolRequest request(const QString &name, double pointSize,
    SymbolWeight weight = SymbolWeight::Regular, double devicePixelRatio = 1)
{
    return {.name = name,
        .pointSize = pointSize,
        .weight = weight,
        .color = Qt::black,
        .devicePixelRatio = devicePixelRatio};
}

/// How much of the picture is covered, in whole pixels.
double ink(const QImage &image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += qAlpha(image.pixel(x, y)) / 255.0;
    }
    return sum;
}

int strongestAlpha(const QImage &image, const QRect &area)
{
    int strongest = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            strongest = std::max(strongest, qAlpha(image.pixel(x, y)));
    }
    return strongest;
}

/// The strongest alpha among the outermost pixels.
int strongestAlphaOnTheRim(const QImage &image)
{
    const int w = image.width();
    const int h = image.height();
    return std::max({strongestAlpha(image, {0, 0, w, 1}), strongestAlpha(image, {0, h - 1, w, 1}),
        strongestAlpha(image, {0, 0, 1, h}), strongestAlpha(image, {w - 1, 0, 1, h})});
}

} // namespace

class SymbolsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyNameThatTheViewsUseIsDrawn_data();
    void everyNameThatTheViewsUseIsDrawn();
    void aNameWithoutADrawingHasNeitherSizeNorImage();
    void theWidthFollowsTheDrawing();
    void inkFillsTheBoxButIsNotCutOffAtItsEdge();
    void theImageHasTheSizeAskedForInPixelsOfTheScreen();
    void theImageTakesTheColourAndItsAlpha();
    void aHeavierWeightDrawsMoreInk();
    void anUprightStrokeFallsOnOneColumnOfPixels();
    void asksThatMakeNoSenseGetNoImage_data();
    void asksThatMakeNoSenseGetNoImage();
    void theSameRequestIsDrawnOnce();
    void noMoreImagesAreKeptThanTheCacheHolds();
};

void SymbolsTest::everyNameThatTheViewsUseIsDrawn_data()
{
    QTest::addColumn<QString>("name");
    for (const auto *name : {"sparkles", "cpu", "brain", "gauge.medium", "arrow.clockwise",
             "gearshape", "exclamationmark.triangle.fill", "clock", "chevron.left", "checkmark",
             "menubar.rectangle", "arrow.triangle.2.circlepath", "bell.badge", "network",
             "envelope", "paperplane"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void SymbolsTest::everyNameThatTheViewsUseIsDrawn()
{
    QFETCH(QString, name);
    const SvgSymbols symbols;
    QVERIFY(symbols.has(name));
    QVERIFY(SvgSymbols::names().contains(name));
    QVERIFY(ink(symbols.image(request(name, 13))) > 10);
}

void SymbolsTest::aNameWithoutADrawingHasNeitherSizeNorImage()
{
    const SvgSymbols symbols;
    for (const QString &name :
        {u"no.such.symbol"_s, QString(), u"clock "_s, u"Clock"_s, u"../symbols/clock"_s}) {
        QVERIFY(!symbols.has(name));
        QVERIFY(symbols.size(name, 13).isEmpty());
        QVERIFY(symbols.image(request(name, 13)).isNull());
    }
    QCOMPARE(symbols.cachedImages(), 0);
}

void SymbolsTest::theWidthFollowsTheDrawing()
{
    const SvgSymbols symbols;
    const QStringList names = SvgSymbols::names();
    for (const QString &name : names) {
        QFile file(":/brimwatch/symbols/"_L1 + name + ".svg"_L1);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(name));
        QXmlStreamReader reader(&file);
        QVERIFY(reader.readNextStartElement());
        const QStringList viewBox = reader.attributes().value("viewBox"_L1).toString().split(u' ');
        QCOMPARE(viewBox.size(), 4);
        const double height = viewBox.at(3).toDouble();
        QCOMPARE(height, 20.0);

        const QSizeF size = symbols.size(name, 20);
        QCOMPARE(size.height(), 23.0);
        QCOMPARE(size.width() / size.height(), viewBox.at(2).toDouble() / height);
    }
}

void SymbolsTest::inkFillsTheBoxButIsNotCutOffAtItsEdge()
{
    const SvgSymbols symbols;
    const QStringList names = SvgSymbols::names();
    for (const QString &name : names) {
        for (const double size : viewSizes) {
            for (const SymbolWeight weight : allWeights) {
                for (const double ratio : {1.0, 1.25, 2.0}) {
                    const QImage image = symbols.image(request(name, size, weight, ratio));
                    const auto what = u"%1 at %2, weight %3, ratio %4"_s.arg(name)
                                          .arg(size)
                                          .arg(static_cast<int>(weight))
                                          .arg(ratio);
                    // A stroke that runs off the picture covers the pixels at its edge; one that
                    // ends before it leaves them at most half covered.
                    QVERIFY2(strongestAlphaOnTheRim(image) < 128, qPrintable(what));
                    const double covered = ink(image) / (image.width() * image.height());
                    QVERIFY2(covered > 0.05 && covered < 0.7, qPrintable(what));
                }
            }
        }
    }
}

void SymbolsTest::theImageHasTheSizeAskedForInPixelsOfTheScreen()
{
    const SvgSymbols symbols;
    for (const double ratio : {1.0, 1.5, 2.0, 3.0}) {
        for (const double size : viewSizes) {
            const QImage image
                = symbols.image(request(u"envelope"_s, size, SymbolWeight::Regular, ratio));
            const QSizeF exact = symbols.size(u"envelope"_s, size) * ratio;
            QCOMPARE(image.format(), QImage::Format_ARGB32_Premultiplied);
            QCOMPARE(image.devicePixelRatio(), ratio);
            QCOMPARE(image.width(), qCeil(exact.width() - 1e-6));
            QCOMPARE(image.height(), qCeil(exact.height() - 1e-6));
        }
    }
    // The same drawing on twice the pixels, not a larger one.
    const auto coverage = [&](double ratio) {
        const QSizeF box = symbols.size(u"clock"_s, 20) * ratio;
        return ink(symbols.image(request(u"clock"_s, 20, SymbolWeight::Bold, ratio)))
            / (box.width() * box.height());
    };
    QVERIFY(std::abs(coverage(2) - coverage(1)) < 0.01);
}

void SymbolsTest::theImageTakesTheColourAndItsAlpha()
{
    const SvgSymbols symbols;
    SymbolRequest asked = request(u"exclamationmark.triangle.fill"_s, 36);
    for (const QColor &color : {QColor(255, 0, 0), QColor(255, 0, 0, 128)}) {
        asked.color = color;
        const QImage image = symbols.image(asked);
        for (int y = 0; y < image.height(); ++y) {
            const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                QCOMPARE(qRed(line[x]), qAlpha(line[x]));
                QCOMPARE(qGreen(line[x]), 0);
                QCOMPARE(qBlue(line[x]), 0);
            }
        }
        QCOMPARE(strongestAlpha(image, image.rect()), color.alpha());
    }
}

void SymbolsTest::aHeavierWeightDrawsMoreInk()
{
    const SvgSymbols symbols;
    const QStringList names = SvgSymbols::names();
    for (const QString &name : names) {
        for (const double size : viewSizes) {
            double lighter = 0;
            for (const SymbolWeight weight : allWeights) {
                const double here = ink(symbols.image(request(name, size, weight)));
                QVERIFY2(here > lighter * 1.005, qPrintable(name));
                lighter = here;
            }
        }
    }
}

void SymbolsTest::anUprightStrokeFallsOnOneColumnOfPixels()
{
    // In pictures of 12, 14 and 15 pixels: the middle of the first two lies between two columns.
    const SvgSymbols symbols;
    for (const double size : {10.0, 12.0, 13.0}) {
        const QImage image = symbols.image(request(u"clock"_s, size));
        const int middle = image.width() / 2;
        const int throughTheHand = image.height() * 2 / 5;
        const QRect besideTheMiddle(middle - 1, throughTheHand, 3, 1);
        QVERIFY(strongestAlpha(image, besideTheMiddle) > 200);
    }
}

void SymbolsTest::asksThatMakeNoSenseGetNoImage_data()
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::addColumn<double>("pointSize");
    QTest::addColumn<double>("ratio");
    QTest::newRow("no size") << 0.0 << 1.0;
    QTest::newRow("a negative size") << -13.0 << 1.0;
    QTest::newRow("two negatives") << -13.0 << -1.0;
    QTest::newRow("not a number") << nan << 1.0;
    QTest::newRow("an endless size") << infinity << 1.0;
    QTest::newRow("no ratio") << 13.0 << 0.0;
    QTest::newRow("a ratio that is not a number") << 13.0 << nan;
    QTest::newRow("a picture of gigabytes") << 13.0 << 10000.0;
}

void SymbolsTest::asksThatMakeNoSenseGetNoImage()
{
    QFETCH(double, pointSize);
    QFETCH(double, ratio);
    const SvgSymbols symbols;
    QVERIFY(symbols.image(request(u"clock"_s, pointSize, SymbolWeight::Regular, ratio)).isNull());
    QCOMPARE(symbols.cachedImages(), 0);
}

void SymbolsTest::theSameRequestIsDrawnOnce()
{
    const SvgSymbols symbols;
    const SymbolRequest asked = request(u"cpu"_s, 13);
    const qint64 first = symbols.image(asked).cacheKey();
    QCOMPARE(symbols.image(asked).cacheKey(), first);
    QCOMPARE(symbols.cachedImages(), 1);

    SymbolRequest other = asked;
    other.color = Qt::white;
    QVERIFY(symbols.image(other).cacheKey() != first);
    other = asked;
    other.weight = SymbolWeight::Bold;
    QVERIFY(symbols.image(other).cacheKey() != first);
    other = asked;
    other.devicePixelRatio = 2;
    QVERIFY(symbols.image(other).cacheKey() != first);
    QCOMPARE(symbols.cachedImages(), 4);
}

void SymbolsTest::noMoreImagesAreKeptThanTheCacheHolds()
{
    const SvgSymbols symbols;
    const QImage first = symbols.image(request(u"clock"_s, 1));
    QImage last;
    for (int size = 2; size <= SvgSymbols::cacheCapacity + 10; ++size)
        last = symbols.image(request(u"clock"_s, size));
    QCOMPARE(symbols.cachedImages(), 64);

    QCOMPARE(symbols.image(request(u"clock"_s, SvgSymbols::cacheCapacity + 10)).cacheKey(),
        last.cacheKey());
    QVERIFY(symbols.image(request(u"clock"_s, 1)).cacheKey() != first.cacheKey());
    QCOMPARE(symbols.cachedImages(), 64);
}

QTEST_MAIN(SymbolsTest)
#include "symbols_test.moc"
