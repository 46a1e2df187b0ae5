#include "views/drawing/rounded_rectangle.h"

#include <QQuickWindow>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

class RoundedRectangleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aTallOneHasTheEndsOfAShortOne_data();
    void aTallOneHasTheEndsOfAShortOne();
};

namespace {

QImage picture(qreal radius, const QColor &color, QSize size, qreal outlineWidth)
{
    QQuickWindow window;
    window.resize(size + QSize(4, 4));
    auto *item = new views::RoundedRectangle(window.contentItem());
    item->setPosition({2, 2});
    item->setSize(size);
    item->setProperty("radius", radius);
    item->setProperty("color", color);
    item->setProperty("outlineWidth", outlineWidth);
    item->setProperty("outlineColor", QColor(Qt::blue));
    window.show();
    return window.grabWindow();
}

} // namespace

void RoundedRectangleTest::initTestCase()
{
    QQuickWindow::setSceneGraphBackend(u"software"_s);
}

void RoundedRectangleTest::aTallOneHasTheEndsOfAShortOne_data()
{
    QTest::addColumn<qreal>("radius");
    QTest::addColumn<int>("width");
    QTest::addColumn<qreal>("outlineWidth");
    QTest::newRow("square") << 0.0 << 40 << 0.0;
    QTest::newRow("small corners") << 3.0 << 40 << 0.0;
    QTest::newRow("large corners") << 10.0 << 40 << 0.0;
    QTest::newRow("outline") << 10.0 << 40 << 2.0;
    QTest::newRow("parts of pixels") << 12.5 << 41 << 1.0;
    QTest::newRow("half circles") << 100.0 << 7 << 0.0;
}

void RoundedRectangleTest::aTallOneHasTheEndsOfAShortOne()
{
    QFETCH(qreal, radius);
    QFETCH(int, width);
    QFETCH(qreal, outlineWidth);
    for (const QColor &color : {QColor(Qt::red), QColor(255, 0, 0, 60)}) {
        // One is drawn at once, the other in three parts.
        constexpr int shortHeight = 44;
        constexpr int tallHeight = 200;
        const QImage atOnce = picture(radius, color, {width, shortHeight}, outlineWidth);
        const QImage inParts = picture(radius, color, {width, tallHeight}, outlineWidth);
        constexpr int end = shortHeight / 2 + 2;
        const auto rows = [](const QImage &image, int first) {
            return image.copy(0, first, image.width(), end);
        };
        QCOMPARE(rows(inParts, 0), rows(atOnce, 0));
        QCOMPARE(rows(inParts, inParts.height() - end), rows(atOnce, atOnce.height() - end));
        const QRgb background = inParts.pixel(0, 0);
        const QRgb middle = inParts.pixel(width / 2 + 2, tallHeight / 2);
        QVERIFY(middle != background);
        for (int y = end; y < inParts.height() - end; ++y)
            QCOMPARE(inParts.pixel(width / 2 + 2, y), middle);
    }
}

QTEST_MAIN(RoundedRectangleTest)
#include "rounded_rectangle_test.moc"
