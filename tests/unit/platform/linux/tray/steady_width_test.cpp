#include "platform/linux/symbols/svg_symbols.h"
#include "platform/linux/tray/steady_width.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::platform;

namespace {

model::LabelComposition labelOf(const QString &text)
{
    model::LabelComposition label;
    label.title = {model::TextRun{.text = text, .color = model::ColorToken::Label}};
    return label;
}

} // namespace

class SteadyWidthTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLabelThatLosesADigitKeepsItsWidth()
    {
        SteadyWidth width;
        const int widest = width.of(labelOf(u"5h: 100%"_s), m_painter, {});
        QCOMPARE(width.of(labelOf(u"5h: 99%"_s), m_painter, {}), widest);
        QCOMPARE(width.of(labelOf(u"5h: 7%"_s), m_painter, {}), widest);
    }

    void aLabelThatGainsADigitGrowsOnce()
    {
        SteadyWidth width;
        const int narrow = width.of(labelOf(u"5h: 99%"_s), m_painter, {});
        const int wide = width.of(labelOf(u"5h: 100%"_s), m_painter, {});
        QVERIFY(wide > narrow);
        QCOMPARE(width.of(labelOf(u"5h: 99%"_s), m_painter, {}), wide);
    }

    void anotherLabelIsMeasuredAnew()
    {
        SteadyWidth width;
        width.of(labelOf(u"5h: 100% · W: 100%"_s), m_painter, {});
        const auto shorter = labelOf(u"5h: 100%"_s);
        QCOMPARE(width.of(shorter, m_painter, {}), m_painter.size(shorter, {}).width());
    }

    void anotherHeightIsMeasuredAnew()
    {
        SteadyWidth width;
        const auto label = labelOf(u"5h: 100%"_s);
        width.of(label, m_painter, {.height = 22});
        QCOMPARE(width.of(label, m_painter, {.height = 14}),
            m_painter.size(label, {.height = 14}).width());
    }

private:
    SvgSymbols m_symbols;
    LabelPainter m_painter{m_symbols};
};

QTEST_MAIN(SteadyWidthTest)
#include "steady_width_test.moc"
