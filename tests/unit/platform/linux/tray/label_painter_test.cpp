#include "platform/linux/symbols/svg_symbols.h"
#include "platform/linux/tray/label_painter.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::platform;
using model::ColorToken;
using model::LabelComposition;

namespace {

LabelComposition labelOf(const QString &text, ColorToken color = ColorToken::Label)
{
    LabelComposition label;
    label.title = {model::TextRun{.text = text, .color = color}};
    return label;
}

LabelComposition badgeOf(const QList<model::BadgeNumber> &numbers)
{
    LabelComposition label;
    label.badge.numbers = numbers;
    return label;
}

LabelComposition iconAlone()
{
    LabelComposition label;
    label.image = model::LabelImage{.symbol = {.name = u"sparkles"_s, .pointSize = 12},
        .accessibleName = u"Gemini"_s,
        .paddingLeft = 4,
        .paddingRight = 2,
        .paddingVertical = 2};
    return label;
}

bool near(QRgb pixel, const Rgba &color)
{
    const auto close = [](int a, double b) { return std::abs(a - b * 255) < 40; };
    return close(qRed(pixel), color.red) && close(qGreen(pixel), color.green)
        && close(qBlue(pixel), color.blue);
}

/// The pixels that are mostly ink and of that colour.
int inkOf(const QImage &image, const Rgba &color)
{
    const QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    int count = 0;
    for (int y = 0; y < plain.height(); ++y) {
        for (int x = 0; x < plain.width(); ++x) {
            const QRgb pixel = plain.pixel(x, y);
            if (qAlpha(pixel) > 150 && near(pixel, color))
                ++count;
        }
    }
    return count;
}

/// The rectangle of the pixels that are mostly ink.
QRect inkRect(const QImage &image)
{
    const QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    QRect ink;
    for (int y = 0; y < plain.height(); ++y) {
        for (int x = 0; x < plain.width(); ++x) {
            if (qAlpha(plain.pixel(x, y)) > 127)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

bool hasInkAtEdge(const QImage &image)
{
    const QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    for (int x = 0; x < plain.width(); ++x) {
        if (qAlpha(plain.pixel(x, 0)) > 60 || qAlpha(plain.pixel(x, plain.height() - 1)) > 60)
            return true;
    }
    return false;
}

} // namespace

class LabelPainterTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theWidthDoesNotChangeWithTheDigits()
    {
        const LabelLook look;
        const int width = m_painter.size(labelOf(u"5h: 80% · W: 55%"_s), look).width();
        for (const auto &text :
            {u"5h: 11% · W: 11%"_s, u"5h: 47% · W: 90%"_s, u"5h: 00% · W: 36%"_s})
            QCOMPARE(m_painter.size(labelOf(text), look).width(), width);
    }

    void eachRunHasItsColourOnEachBackground()
    {
        LabelComposition label;
        label.title
            = {model::TextRun{.text = u"5h: 80%"_s, .color = ColorToken::AdaptiveHealthyGreen},
                model::TextRun{.text = u" · "_s, .color = ColorToken::SecondaryLabel},
                model::TextRun{.text = u"W: 55%"_s, .color = ColorToken::SystemOrange}};
        for (const Background background : {Background::Light, Background::Dark}) {
            const QImage image = m_painter.image(label, {.background = background});
            QVERIFY(inkOf(image, systemColor(ColorToken::AdaptiveHealthyGreen, background)) > 10);
            QVERIFY(inkOf(image, systemColor(ColorToken::SystemOrange, background)) > 10);
        }
    }

    void theIconIsDrawnInTheColourOfThePanelsTexts()
    {
        for (const Background background : {Background::Light, Background::Dark}) {
            const QImage image = m_painter.image(iconAlone(), {.background = background});
            QVERIFY(inkOf(image, systemColor(ColorToken::Label, background)) > 10);
        }
    }

    void theIconStandsInItsPadding()
    {
        const QSize size = m_painter.size(iconAlone(), {});
        QCOMPARE(size.width(),
            static_cast<int>(std::ceil(m_symbols.size(u"sparkles"_s, 12).width() + 4 + 2)));
    }

    void nothingTouchesTheEdgeAtAnyHeight_data()
    {
        QTest::addColumn<int>("height");
        for (const int height : {16, 19, 22, 24, 28, 32, 48})
            QTest::addRow("%d", height) << height;
    }
    void nothingTouchesTheEdgeAtAnyHeight()
    {
        QFETCH(int, height);
        LabelComposition label = iconAlone();
        label.title
            = {model::TextRun{.text = u" G 5h: 80% · Wg: 55%"_s, .color = ColorToken::Label}};
        for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
            const QImage image
                = m_painter.image(label, {.devicePixelRatio = ratio, .height = height});
            QCOMPARE(image.height(), static_cast<int>(std::ceil(height * ratio)));
            QVERIFY(!hasInkAtEdge(image));
        }
    }

    void theLabelGrowsWithItsScaleAndStaysInTheMiddle_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<double>("scale");
        for (const auto &family : {u"DejaVu Sans"_s, u"DejaVu Serif"_s}) {
            for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0})
                QTest::addRow("%s at %g", qPrintable(family), scale) << family << scale;
        }
    }
    void theLabelGrowsWithItsScaleAndStaysInTheMiddle()
    {
        QFETCH(QString, family);
        QFETCH(double, scale);
        const LabelComposition label = labelOf(u"1234567890"_s);
        const int height = static_cast<int>(std::lround(22 * scale));
        const QRect usual = inkRect(m_painter.image(label, {.fontFamily = family}));
        const QRect ink = inkRect(
            m_painter.image(label, {.fontFamily = family, .scale = scale, .height = height}));
        // Whole pixels, here and there.
        QVERIFY(std::abs(ink.height() - usual.height() * scale) <= scale + 1);
        QVERIFY(std::abs(ink.width() - usual.width() * scale) <= 2 + 2 * scale);
        // The digits are as high as capitals; half a pixel more is the baseline's.
        QVERIFY(std::abs(ink.top() + ink.bottom() + 1 - height) <= 2);

        // As many pixels by the ratio of a screen as by the scale.
        const QRect dense
            = inkRect(m_painter.image(label, {.fontFamily = family, .devicePixelRatio = scale}));
        QVERIFY(std::abs(dense.height() - ink.height()) <= 2);
        QVERIFY(std::abs(dense.top() + dense.bottom() + 1 - 22 * scale) <= 2 + scale);
    }

    void aLabelIsNoLargerThanItsHeightAllows()
    {
        const LabelComposition label = labelOf(u"1234567890"_s);
        const LabelLook low{.scale = 3, .height = 34};
        QCOMPARE(m_painter.size(label, low), m_painter.size(label, {.scale = 2, .height = 34}));
        QVERIFY(m_painter.size(label, low).width()
            > m_painter.size(label, {.scale = 1.5, .height = 34}).width());
        QVERIFY(!hasInkAtEdge(m_painter.image(label, low)));
    }

    void theNumbersOfABadgeStandInTheMiddleOfTheirLines_data()
    {
        QTest::addColumn<QString>("family");
        for (const auto &family : {u"DejaVu Sans"_s, u"DejaVu Serif"_s, u"DejaVu Sans Mono"_s})
            QTest::addRow("%s", qPrintable(family)) << family;
    }
    void theNumbersOfABadgeStandInTheMiddleOfTheirLines()
    {
        QFETCH(QString, family);
        for (const int side : {22, 24, 32, 48, 64}) {
            const QRect one = inkRect(
                m_painter.squareImage(badgeOf({{.text = u"42"_s}}), {.fontFamily = family}, side));
            QVERIFY(std::abs(one.top() + one.bottom() + 1 - side) <= 2);
            const QImage two = m_painter.squareImage(
                badgeOf({{.text = u"42"_s}, {.text = u"17"_s}}), {.fontFamily = family}, side);
            const int half = side / 2;
            const QRect upper = inkRect(two.copy(0, 0, side, half));
            const QRect lower = inkRect(two.copy(0, half, side, half));
            QVERIFY(std::abs(upper.top() + upper.bottom() + 1 - half) <= 2);
            QVERIFY(std::abs(lower.top() + lower.bottom() + 1 - half) <= 2);
        }
    }

    void aSymbolRunIsAsWideAsItsSymbol()
    {
        LabelComposition label = labelOf(u" 5h: 80%"_s);
        const int without = m_painter.size(label, {}).width();
        label.title.prepend(model::SymbolRun{.symbol = {.name = u"cpu"_s, .pointSize = 10}});
        const double symbol = m_symbols.size(u"cpu"_s, 10).width();
        QVERIFY(std::abs(m_painter.size(label, {}).width() - without - symbol) <= 1);
    }

    void aSquareHoldsTheSymbolInItsMiddle()
    {
        const QImage image = m_painter.squareImage(iconAlone(), {}, 22);
        QCOMPARE(image.size(), QSize(22, 22));
        QVERIFY(inkOf(image, systemColor(ColorToken::Label, Background::Dark)) > 20);
        QVERIFY(!hasInkAtEdge(image));
    }

    void aBadgeHasItsNumbersInTheirColours_data()
    {
        QTest::addColumn<int>("side");
        for (const int side : {16, 19, 22, 24, 32, 48})
            QTest::addRow("%d", side) << side;
    }
    void aBadgeHasItsNumbersInTheirColours()
    {
        QFETCH(int, side);
        const auto upperAndLower = badgeOf({{.text = u"100"_s, .color = ColorToken::SystemRed},
            {.text = u"42"_s, .color = ColorToken::SystemOrange}});
        for (const Background background : {Background::Light, Background::Dark}) {
            const QImage image
                = m_painter.squareImage(upperAndLower, {.background = background}, side);
            QCOMPARE(image.size(), QSize(side, side));
            const QImage upper = image.copy(0, 0, side, side / 2);
            const QImage lower = image.copy(0, (side + 1) / 2, side, side / 2);
            QVERIFY(inkOf(upper, systemColor(ColorToken::SystemRed, background)) > side / 2);
            QCOMPARE(inkOf(upper, systemColor(ColorToken::SystemOrange, background)), 0);
            QVERIFY(inkOf(lower, systemColor(ColorToken::SystemOrange, background)) > side / 2);
            QCOMPARE(inkOf(lower, systemColor(ColorToken::SystemRed, background)), 0);
        }
    }

    void oneNumberStandsInTheMiddleOfTheBadge()
    {
        const QImage image = m_painter.squareImage(
            badgeOf({{.text = u"42"_s, .color = ColorToken::SystemOrange}}), {}, 24);
        const Rgba orange = systemColor(ColorToken::SystemOrange, Background::Dark);
        QVERIFY(inkOf(image.copy(0, 8, 24, 8), orange) > 20);
        QCOMPARE(inkOf(image.copy(0, 0, 24, 3), orange), 0);
        QCOMPARE(inkOf(image.copy(0, 21, 24, 3), orange), 0);
    }

    void aCriticalNumberIsToldFromAHealthyOneWithoutColours()
    {
        for (const int side : {16, 19, 22, 24, 32}) {
            const auto picture = [&](bool critical) {
                return m_painter.squareImage(
                    badgeOf({{.text = u"12"_s, .isCritical = critical}}), {}, side);
            };
            // Turned round: a block in the number's colour with the digits cut out.
            QVERIFY(qAlpha(picture(true).pixel(0, side / 2)) > 200);
            QCOMPARE(qAlpha(picture(false).pixel(0, side / 2)), 0);
            QVERIFY(
                inkOf(picture(true), systemColor(ColorToken::WindowBackground, Background::Dark))
                > side / 2);
        }
    }

private:
    SvgSymbols m_symbols;
    LabelPainter m_painter{m_symbols};
};

QTEST_MAIN(LabelPainterTest)
#include "label_painter_test.moc"
