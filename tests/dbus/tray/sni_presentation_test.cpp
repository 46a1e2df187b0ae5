#include "platform/linux/tray/dbus_menu.h"
#include "platform/linux/tray/label_painter.h"
#include "platform/linux/tray/sni_presentation.h"
#include "platform/symbols.h"
#include "support/fake_appearance.h"
#include "support/fake_watcher.h"

#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QPainter>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <limits>
#include <memory>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::platform;
using test::FakeHost;
using test::FakeWatcher;
using test::OtherProgram;

namespace {

constexpr auto itemInterface = "org.kde.StatusNotifierItem"_L1;
constexpr auto itemPath = "/StatusNotifierItem"_L1;
constexpr auto properties = "org.freedesktop.DBus.Properties"_L1;

/// Every symbol is a full square in a colour of its own.
class SquareSymbols : public SymbolSource {
public:
    bool has(const QString & /*name*/) const override { return true; }
    QSizeF size(const QString & /*name*/, double pointSize) const override
    {
        return {pointSize, pointSize};
    }
    QImage image(const SymbolRequest &request) const override
    {
        const int side = qRound(request.pointSize * request.devicePixelRatio);
        QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(request.devicePixelRatio);
        image.fill(
            request.name == "sparkles"_L1 ? QColor(0x10, 0x20, 0x30) : QColor(0xe0, 0xd0, 0xc0));
        return image;
    }
};

model::LabelImage imageOf(const QString &symbol)
{
    model::LabelImage image;
    image.symbol = {.name = symbol, .pointSize = 13};
    return image;
}

PresentedItem someItem()
{
    PresentedItem item;
    item.label.image = imageOf(u"sparkles"_s);
    item.label.imagePosition = model::ImagePosition::Leading;
    item.label.title
        = {model::TextRun{.text = u"5h: 80%"_s, .color = model::ColorToken::AdaptiveHealthyGreen},
            model::TextRun{.text = u" · "_s, .color = model::ColorToken::SecondaryLabel},
            model::TextRun{.text = u"W: 7%"_s, .color = model::ColorToken::SystemRed}};
    item.description = {.title = u"Gemini 5h: 80%, week: 7%"_s,
        .lines = {u"Gemini 5 hours: 80.0%"_s, u"Gemini week: 7.0%"_s}};
    return item;
}

PresentedItem withLabelText(const QString &text)
{
    PresentedItem item = someItem();
    item.label.title = {model::TextRun{.text = text, .color = model::ColorToken::Label}};
    return item;
}

PresentedItem withTitle(const QString &title)
{
    PresentedItem item = someItem();
    item.description.title = title;
    return item;
}

PresentedItem withLines(const QStringList &lines)
{
    PresentedItem item = someItem();
    item.description.lines = lines;
    return item;
}

bool isError(const QDBusMessage &answer)
{
    return answer.type() == QDBusMessage::ErrorMessage;
}

QString nameNumbered(int number)
{
    return u"org.kde.StatusNotifierItem-%1-%2"_s.arg(QCoreApplication::applicationPid())
        .arg(number);
}

int numberIn(const QString &itemName)
{
    return itemName.section(u'-', -1).toInt();
}

QString signatureOf(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<QDBusArgument>())
        return value.value<QDBusArgument>().currentSignature();
    return QString::fromLatin1(QDBusMetaType::typeToSignature(value.metaType()));
}

} // namespace

class SniPresentationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void itRegistersOnceUnderANameOfItsOwn();
    void withoutAWatcherItIsLost();
    void aWatcherThatComesLaterTakesTheNextOne();
    void aWatcherThatRefusesItMeansLost();
    void aWatcherThatGoesAwayMeansLostOnce();
    void aWatcherThatIsReplacedMeansLost();
    void aBusThatGoesAwayMeansLost();
    void whereTheNameIsRefusedTheConnectionsOwnNameDoes();
    void theSecondOneOnAConnectionIsLostAndLeavesTheFirstAlone();
    void itLeavesTheBusAtItsEnd();

    void everyPropertyHasTheSignatureOfTheProtocol();
    void eachPropertyCanBeReadAlone();
    void picturesAreSquareAndInNetworkByteOrder();
    void picturesShowTheSymbolOfTheLabel();
    void picturesFollowTheContrastThatTheUserWants();
    void theLabelsTextStandsForItsSymbols();
    void beforeAnythingIsPresentedItCanBeShown();
    void textsHoldNothingThatHostsTakeForMarkup_data();
    void textsHoldNothingThatHostsTakeForMarkup();
    void aNameOfSeveralLinesIsOneLine();
    void longTextsAreCut();
    void theTooltipHasEveryLineOfTheFullestDescription();

    void onlyWhatChangedIsSignalled_data();
    void onlyWhatChangedIsSignalled();
    void theSameItemAgainIsNotSignalled();
    void aBurstIsSignalledTwiceAndItsLastStateArrives();
    void nothingIsSignalledToNobody();

    void aClickCarriesThePlaceThatCanBeGlobal_data();
    void aClickCarriesThePlaceThatCanBeGlobal();
    void theContextMenuOfHostsWithoutMenusIsAClick();
    void otherButtonsWheelsAndTokensDoNothing();
    void theMenuOpensRefreshesConfiguresAndQuits();
    void onlyThePortableFormHasAMenu_data();
    void onlyThePortableFormHasAMenu();
    void theWideFormShowsTheWholeLabel();
    void theWideFormKeepsItsWidthWhileOnlyNumbersChange();
    void picturesAreInTheDesktopsFontAndFollowIt_data();
    void picturesAreInTheDesktopsFontAndFollowIt();
    void malformedCallsGetErrors_data();
    void malformedCallsGetErrors();
    void aFloodIsAnsweredToTheEnd();

private:
    /// A registered item and a panel that reads it.
    void start(const PresentedItem &item, SniForm form = SniForm::Portable);
    QStringList heardSorted();
    QString text(const QString &property);

    SquareSymbols m_symbols;
    LabelPainter m_painter{m_symbols};
    test::FakeAppearance m_appearance{Background::Dark};
    std::unique_ptr<FakeWatcher> m_watcher;
    std::unique_ptr<SniPresentation> m_item;
    std::unique_ptr<FakeHost> m_host;
};

void SniPresentationTest::cleanup()
{
    m_appearance.contrast = Contrast::Usual;
    m_host.reset();
    m_item.reset();
    m_watcher.reset();
    m_appearance.family.clear();
    // The next test begins on a bus without any of them.
    OtherProgram other;
    QTRY_VERIFY(other.ownerOf(u"org.kde.StatusNotifierWatcher"_s).isEmpty());
}

void SniPresentationTest::start(const PresentedItem &item, SniForm form)
{
    m_watcher = std::make_unique<FakeWatcher>();
    m_item = std::make_unique<SniPresentation>(
        form, QDBusConnection::sessionBus(), m_painter, m_appearance, nullptr);
    m_item->present(item);
    QSignalSpy registered(m_item.get(), &Presentation::registered);
    QTRY_COMPARE(registered.size(), 1);
    m_host = std::make_unique<FakeHost>(m_watcher->items().constFirst(), itemPath, itemInterface,
        QStringList{u"NewIcon"_s, u"NewTitle"_s, u"NewToolTip"_s, u"XAyatanaNewLabel"_s,
            u"NewStatus"_s, u"NewAttentionIcon"_s, u"NewOverlayIcon"_s});
}

QStringList SniPresentationTest::heardSorted()
{
    auto names = m_host->heard();
    names.sort();
    return names;
}

QString SniPresentationTest::text(const QString &property)
{
    const auto value = m_host->read(property).arguments().value(0).value<QDBusVariant>().variant();
    if (property == "ToolTip"_L1)
        return qdbus_cast<SniToolTip>(value).title;
    return value.toString();
}

void SniPresentationTest::itRegistersOnceUnderANameOfItsOwn()
{
    FakeWatcher watcher;
    SniPresentation item(
        SniForm::Portable, QDBusConnection::sessionBus(), m_painter, m_appearance, nullptr);
    QSignalSpy registered(&item, &Presentation::registered);
    QSignalSpy lost(&item, &Presentation::lost);
    item.present(someItem());
    QTRY_COMPARE(registered.size(), 1);
    item.present(withTitle(u"other"_s));

    QCOMPARE(watcher.items().size(), 1);
    const QString name = watcher.items().constFirst();
    QCOMPARE(name, nameNumbered(numberIn(name)));
    OtherProgram other;
    QCOMPARE(other.ownerOf(name), QDBusConnection::sessionBus().baseService());
    QCOMPARE(watcher.senders(), QStringList{QDBusConnection::sessionBus().baseService()});
    QCOMPARE(registered.size(), 1);
    QVERIFY(lost.isEmpty());
}

void SniPresentationTest::withoutAWatcherItIsLost()
{
    SniPresentation item(
        SniForm::Portable, QDBusConnection::sessionBus(), m_painter, m_appearance, nullptr);
    QSignalSpy registered(&item, &Presentation::registered);
    QSignalSpy lost(&item, &Presentation::lost);
    QTRY_COMPARE(lost.size(), 1);
    QVERIFY(registered.isEmpty());
}

void SniPresentationTest::aWatcherThatComesLaterTakesTheNextOne()
{
    auto early = std::make_unique<SniPresentation>(
        SniForm::Portable, QDBusConnection::sessionBus(), m_painter, m_appearance, nullptr);
    QSignalSpy lost(early.get(), &Presentation::lost);
    QTRY_COMPARE(lost.size(), 1);
    FakeWatcher watcher;
    early.reset();

    SniPresentation item(
        SniForm::Portable, QDBusConnection::sessionBus(), m_painter, m_appearance, nullptr);
    QSignalSpy registered(&item, &Presentation::registered);
    QTRY_COMPARE(registered.size(), 1);
    QCOMPARE(watcher.items().size(), 1);
}

void SniPresentationTest::aWatcherThatRefusesItMeansLost()
{
    FakeWatcher watcher(FakeWatcher::Manners::RefusesItems);
    SniPresentation item(
        SniForm::Portable, QDBusConnection::sessionBus(), m_painter, m_appearance, nullptr);
    QSignalSpy registered(&item, &Presentation::registered);
    QSignalSpy lost(&item, &Presentation::lost);
    QTRY_COMPARE(lost.size(), 1);
    QCOMPARE(watcher.items().size(), 1);
    QVERIFY(registered.isEmpty());
}

void SniPresentationTest::aWatcherThatGoesAwayMeansLostOnce()
{
    start(someItem());
    const QString firstName = m_watcher->items().constFirst();
    QSignalSpy lost(m_item.get(), &Presentation::lost);
    m_watcher.reset();
    QTRY_COMPARE(lost.size(), 1);

    m_watcher = std::make_unique<FakeWatcher>();
    SniPresentation *first = m_item.release();
    first->deleteLater();
    QTRY_COMPARE(QDBusConnection::sessionBus().objectRegisteredAt(itemPath), nullptr);
    m_item = std::make_unique<SniPresentation>(
        SniForm::Portable, QDBusConnection::sessionBus(), m_painter, m_appearance, nullptr);
    QSignalSpy registered(m_item.get(), &Presentation::registered);
    QTRY_COMPARE(registered.size(), 1);
    QCOMPARE(m_watcher->items().size(), 1);
    QCOMPARE(numberIn(m_watcher->items().constFirst()), numberIn(firstName) + 1);
    QCOMPARE(lost.size(), 1);
}

void SniPresentationTest::aWatcherThatIsReplacedMeansLost()
{
    constexpr auto watcherName = "org.kde.StatusNotifierWatcher"_L1;
    OtherProgram first;
    QCOMPARE(first.bus()
                 .interface()
                 ->registerService(watcherName, QDBusConnectionInterface::DontQueueService,
                     QDBusConnectionInterface::AllowReplacement)
                 .value(),
        QDBusConnectionInterface::ServiceRegistered);
    SniPresentation item(
        SniForm::Portable, QDBusConnection::sessionBus(), m_painter, m_appearance, nullptr);
    QSignalSpy lost(&item, &Presentation::lost);
    OtherProgram second;
    QCOMPARE(second.bus()
                 .interface()
                 ->registerService(watcherName, QDBusConnectionInterface::ReplaceExistingService)
                 .value(),
        QDBusConnectionInterface::ServiceRegistered);
    QTRY_COMPARE(lost.size(), 1);
}

void SniPresentationTest::aBusThatGoesAwayMeansLost()
{
    QProcess daemon;
    daemon.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
    QTRY_VERIFY(daemon.canReadLine());
    const QString address = QString::fromLatin1(daemon.readLine()).trimmed();
    const auto bus = QDBusConnection::connectToBus(address, u"mortal"_s);
    QVERIFY(bus.isConnected());
    {
        SniPresentation item(SniForm::Portable, bus, m_painter, m_appearance, nullptr);
        QSignalSpy lost(&item, &Presentation::lost);
        daemon.terminate();
        QTRY_COMPARE(lost.size(), 1);
        item.present(someItem());
    }
    QTRY_COMPARE(daemon.state(), QProcess::NotRunning);
    QDBusConnection::disconnectFromBus(u"mortal"_s);
}

void SniPresentationTest::whereTheNameIsRefusedTheConnectionsOwnNameDoes()
{
    start(someItem());
    const int next = numberIn(m_watcher->items().constFirst()) + 1;
    OtherProgram thief;
    QVERIFY(thief.takeName(nameNumbered(next)));
    m_item.reset();

    SniPresentation item(
        SniForm::Portable, QDBusConnection::sessionBus(), m_painter, m_appearance, nullptr);
    QSignalSpy registered(&item, &Presentation::registered);
    QTRY_COMPARE(registered.size(), 1);
    QCOMPARE(m_watcher->items().constLast(), QDBusConnection::sessionBus().baseService());
}

void SniPresentationTest::theSecondOneOnAConnectionIsLostAndLeavesTheFirstAlone()
{
    start(someItem());
    {
        SniPresentation second(
            SniForm::Portable, QDBusConnection::sessionBus(), m_painter, m_appearance, nullptr);
        QSignalSpy lost(&second, &Presentation::lost);
        QTRY_COMPARE(lost.size(), 1);
        second.present(withTitle(u"second"_s));
    }
    QCOMPARE(m_watcher->items().size(), 1);
    QCOMPARE(text(u"Title"_s), someItem().description.title);
    QVERIFY(!isError(m_host->program().call(m_watcher->items().constFirst(),
        u"/StatusNotifierItem/Menu"_s, u"com.canonical.dbusmenu"_s, u"AboutToShow"_s, {0})));
}

void SniPresentationTest::itLeavesTheBusAtItsEnd()
{
    start(someItem());
    const QString name = m_watcher->items().constFirst();
    m_item.reset();
    QTRY_VERIFY(m_host->program().ownerOf(name).isEmpty());
    const QString connection = QDBusConnection::sessionBus().baseService();
    QVERIFY(isError(
        m_host->program().call(connection, itemPath, itemInterface, u"Activate"_s, {1, 1})));
    QVERIFY(isError(m_host->program().call(connection, u"/StatusNotifierItem/Menu"_s,
        u"com.canonical.dbusmenu"_s, u"AboutToShow"_s, {0})));
}

void SniPresentationTest::everyPropertyHasTheSignatureOfTheProtocol()
{
    start(someItem());
    const QMap<QString, QString> expected{{u"Category"_s, u"s"_s}, {u"Id"_s, u"s"_s},
        {u"Title"_s, u"s"_s}, {u"Status"_s, u"s"_s}, {u"WindowId"_s, u"i"_s},
        {u"IconThemePath"_s, u"s"_s}, {u"Menu"_s, u"o"_s}, {u"ItemIsMenu"_s, u"b"_s},
        {u"IconName"_s, u"s"_s}, {u"IconPixmap"_s, u"a(iiay)"_s}, {u"OverlayIconName"_s, u"s"_s},
        {u"OverlayIconPixmap"_s, u"a(iiay)"_s}, {u"AttentionIconName"_s, u"s"_s},
        {u"AttentionIconPixmap"_s, u"a(iiay)"_s}, {u"AttentionMovieName"_s, u"s"_s},
        {u"ToolTip"_s, u"(sa(iiay)ss)"_s}, {u"XAyatanaLabel"_s, u"s"_s},
        {u"XAyatanaLabelGuide"_s, u"s"_s}};
    const auto all = m_host->readAll();
    QMap<QString, QString> found;
    for (auto property = all.cbegin(); property != all.cend(); ++property)
        found.insert(property.key(), signatureOf(property.value()));
    QCOMPARE(found, expected);

    QCOMPARE(all.value(u"Category"_s).toString(), u"ApplicationStatus"_s);
    QCOMPARE(all.value(u"Id"_s).toString(), u"brimwatch"_s);
    QCOMPARE(all.value(u"Status"_s).toString(), u"Active"_s);
    QCOMPARE(all.value(u"WindowId"_s).toInt(), 0);
    QCOMPARE(all.value(u"ItemIsMenu"_s), QVariant(false));
    QVERIFY(all.value(u"IconName"_s).toString().isEmpty());
    QVERIFY(qdbus_cast<SniPixmaps>(all.value(u"AttentionIconPixmap"_s)).isEmpty());
    QCOMPARE(all.value(u"Title"_s).toString(), u"Gemini 5h: 80%, week: 7%"_s);
    const auto toolTip = qdbus_cast<SniToolTip>(all.value(u"ToolTip"_s));
    QCOMPARE(toolTip.title, u"Gemini 5 hours: 80.0%\nGemini week: 7.0%"_s);
    QVERIFY(toolTip.text.isEmpty());
}

void SniPresentationTest::eachPropertyCanBeReadAlone()
{
    start(someItem());
    const auto all = m_host->readAll();
    QVERIFY(!all.isEmpty());
    for (auto property = all.cbegin(); property != all.cend(); ++property) {
        const auto answer = m_host->read(property.key());
        QCOMPARE(answer.signature(), u"v"_s);
        QCOMPARE(signatureOf(answer.arguments().value(0).value<QDBusVariant>().variant()),
            signatureOf(property.value()));
    }
}

void SniPresentationTest::picturesAreSquareAndInNetworkByteOrder()
{
    start(someItem());
    const auto pixmaps = qdbus_cast<SniPixmaps>(m_host->readAll().value(u"IconPixmap"_s));
    QList<int> sides;
    for (const auto &pixmap : pixmaps) {
        sides.append(pixmap.width);
        QCOMPARE(pixmap.height, pixmap.width);
        QCOMPARE(pixmap.bytes.size(), qsizetype{4} * pixmap.width * pixmap.height);
        const auto pixel = [&pixmap](int x, int y) {
            return pixmap.bytes.mid(qsizetype{4} * (y * pixmap.width + x), 4).toHex();
        };
        const int middle = pixmap.width / 2;
        QCOMPARE(pixel(middle, middle), "ff102030"_ba);
        // The rounded background: next to nothing in the corner, dark and opaque where the edge is
        // straight.
        QVERIFY(pixel(0, 0).left(2).toInt(nullptr, 16) < 0x08);
        QCOMPARE(pixel(middle, 0), "ff202226"_ba);
    }
    QCOMPARE(sides, QList<int>({16, 22, 24, 32, 48}));
}

void SniPresentationTest::picturesShowTheSymbolOfTheLabel()
{
    start(someItem());
    const auto before = qdbus_cast<SniPixmaps>(m_host->readAll().value(u"IconPixmap"_s));
    PresentedItem item = someItem();
    item.label.image = imageOf(u"brain"_s);
    m_item->present(item);
    QCOMPARE(m_host->heard(), QStringList{u"NewIcon"_s});
    const auto after = qdbus_cast<SniPixmaps>(m_host->readAll().value(u"IconPixmap"_s));
    QCOMPARE(after.size(), before.size());
    for (qsizetype i = 0; i < after.size(); ++i) {
        const qsizetype middle = qsizetype{4} * (after[i].width / 2) * (after[i].width + 1);
        QCOMPARE(before[i].bytes.mid(middle, 4).toHex(), "ff102030"_ba);
        QCOMPARE(after[i].bytes.mid(middle, 4).toHex(), "ffe0d0c0"_ba);
    }
}

void SniPresentationTest::picturesFollowTheContrastThatTheUserWants()
{
    start(someItem(), SniForm::Wide);
    const auto picture = [this] {
        return qdbus_cast<SniPixmaps>(m_host->readAll().value(u"IconPixmap"_s)).last().bytes;
    };
    const QByteArray usual = picture();
    m_appearance.setContrast(Contrast::Higher);
    QTRY_COMPARE(m_host->heard(), QStringList{u"NewIcon"_s});
    QVERIFY(picture() != usual);
    m_appearance.setContrast(Contrast::Usual);
    QTRY_COMPARE(m_host->heard().size(), 2);
    QCOMPARE(picture(), usual);
}

void SniPresentationTest::theLabelsTextStandsForItsSymbols()
{
    PresentedItem item = someItem();
    item.label.title.prepend(
        model::SymbolRun{.symbol = {.name = u"brain"_s, .pointSize = 11}, .text = u"🧠 "_s});
    start(item);
    QCOMPARE(text(u"XAyatanaLabel"_s), u"🧠 5h: 80% · W: 7%"_s);
    QCOMPARE(text(u"XAyatanaLabelGuide"_s), u"🧠 5h: 100% · W: 100%"_s);
}

void SniPresentationTest::beforeAnythingIsPresentedItCanBeShown()
{
    start({});
    QCOMPARE(qdbus_cast<SniPixmaps>(m_host->readAll().value(u"IconPixmap"_s)).size(), 5);
    QCOMPARE(text(u"Title"_s), u"Brimwatch"_s);
    QCOMPARE(text(u"ToolTip"_s), u"Brimwatch"_s);
    QVERIFY(text(u"XAyatanaLabel"_s).isEmpty());
}

void SniPresentationTest::textsHoldNothingThatHostsTakeForMarkup_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("shown");

    QTest::newRow("ampersand") << u"R&D 80%"_s << u"R and D 80%"_s;
    QTest::newRow("ampersand between blanks") << u"R & D 80%"_s << u"R and D 80%"_s;
    QTest::newRow("entity") << u"&lt;b&gt;"_s << u"and lt;b and gt;"_s;
    QTest::newRow("tags") << u"<b>G</b> 80%"_s << u"‹b›G‹/b› 80%"_s;
    QTest::newRow("controls") << u"a\u0007b\u0000c\u001bd"_s << u"a b c d"_s;
    QTest::newRow("line ends") << u"a\r\nb\u2028c\u2029d\ve"_s << u"a b c d e"_s;
    QTest::newRow("symbols") << u"\uFFFC 5h: 80%"_s << u"5h: 80%"_s;
    QTest::newRow("emoji and right to left") << u"🟢 ג׳מיני 80%"_s << u"🟢 ג׳מיני 80%"_s;
}

void SniPresentationTest::textsHoldNothingThatHostsTakeForMarkup()
{
    QFETCH(QString, given);
    QFETCH(QString, shown);
    PresentedItem item = withLabelText(given);
    item.description = {.title = given, .lines = {given, u"second"_s}};
    start(item);
    QCOMPARE(text(u"Title"_s), shown);
    QCOMPARE(text(u"ToolTip"_s), QString(shown % u"\nsecond"_s));
    QCOMPARE(text(u"XAyatanaLabel"_s), shown);
}

void SniPresentationTest::aNameOfSeveralLinesIsOneLine()
{
    start(withLines({u"one\ntwo"_s, u"three"_s}));
    QCOMPARE(text(u"ToolTip"_s), u"one two\nthree"_s);
}

void SniPresentationTest::longTextsAreCut()
{
    // The cut falls into the middle of an emoji.
    const QString given
        = QString(u'x').repeated(398) % u"🟢🟢🟢"_s % QString(u'x').repeated(1'000'000);
    PresentedItem item = withLabelText(given);
    item.description = {.title = given, .lines = {given}};
    start(item);
    const QString shown = QString(u'x').repeated(398) % u'…';
    QCOMPARE(text(u"Title"_s), shown);
    QCOMPARE(text(u"ToolTip"_s), shown);
    QCOMPARE(text(u"XAyatanaLabel"_s), shown);

    const QString name = QString(u'n').repeated(300);
    m_item->present(withTitle(name));
    QTRY_COMPARE(text(u"Title"_s), name);
}

void SniPresentationTest::theTooltipHasEveryLineOfTheFullestDescription()
{
    QStringList lines;
    for (int i = 1; i < ItemDescription::mostLines; ++i)
        lines.append(u"bucket %1"_s.arg(i));
    lines.append(u"Offline since 10:00"_s);
    start(withLines(lines));
    QCOMPARE(text(u"ToolTip"_s).split(u'\n'), lines);
}

void SniPresentationTest::onlyWhatChangedIsSignalled_data()
{
    QTest::addColumn<PresentedItem>("changed");
    QTest::addColumn<QStringList>("expected");

    PresentedItem icon = someItem();
    icon.label.image = imageOf(u"brain"_s);
    PresentedItem color = someItem();
    color.label.title[0]
        = model::TextRun{.text = u"5h: 80%"_s, .color = model::ColorToken::SystemRed};
    PresentedItem everything = withLabelText(u"5h: 3%"_s);
    everything.label.image = imageOf(u"brain"_s);
    everything.description = {.title = u"t"_s, .lines = {u"l"_s}};

    QTest::newRow("symbol") << icon << QStringList{u"NewIcon"_s};
    QTest::newRow("label text") << withLabelText(u"5h: 3%"_s) << QStringList{u"XAyatanaNewLabel"_s};
    QTest::newRow("title") << withTitle(u"t"_s) << QStringList{u"NewTitle"_s};
    QTest::newRow("lines") << withLines({u"l"_s}) << QStringList{u"NewToolTip"_s};
    QTest::newRow("a colour that no picture has") << color << QStringList{};
    QTest::newRow("everything") << everything
                                << QStringList{u"NewIcon"_s, u"NewTitle"_s, u"NewToolTip"_s,
                                       u"XAyatanaNewLabel"_s};
}

void SniPresentationTest::onlyWhatChangedIsSignalled()
{
    QFETCH(PresentedItem, changed);
    QFETCH(QStringList, expected);
    start(someItem());
    m_host->readAll();
    m_item->present(changed);
    QCOMPARE(heardSorted(), expected);
    if (expected.contains(u"XAyatanaNewLabel"_s))
        QCOMPARE(m_host->lastArguments(u"XAyatanaNewLabel"_s),
            QVariantList({u"5h: 3%"_s, u"5h: 100%"_s}));
}

void SniPresentationTest::theSameItemAgainIsNotSignalled()
{
    start(someItem());
    m_host->readAll();
    m_item->present(someItem());
    m_item->present(someItem());
    QVERIFY(m_host->heard().isEmpty());
    m_item->present(withTitle(u"b"_s));
    m_item->present(withTitle(u"b"_s));
    m_item->present(withTitle(u"c"_s));
    // The pause after "b" is over with the second signal, and nothing came beside these two.
    QTRY_COMPARE(m_host->heard().size(), 2);
    QCOMPARE(m_host->heard(), QStringList({u"NewTitle"_s, u"NewTitle"_s}));
}

void SniPresentationTest::aBurstIsSignalledTwiceAndItsLastStateArrives()
{
    start(someItem());
    m_host->readAll();
    for (int percent = 100; percent >= 0; --percent) {
        PresentedItem item = withLabelText(u"5h: %1%"_s.arg(percent));
        item.description.title = u"at %1%"_s.arg(percent);
        m_item->present(item);
    }
    // The first at once; until the next one is signalled it is what everybody reads.
    QCOMPARE(heardSorted(), QStringList({u"NewTitle"_s, u"XAyatanaNewLabel"_s}));
    QCOMPARE(text(u"Title"_s), u"at 100%"_s);
    QTRY_COMPARE(heardSorted().size(), 4);
    QCOMPARE(heardSorted(),
        QStringList({u"NewTitle"_s, u"NewTitle"_s, u"XAyatanaNewLabel"_s, u"XAyatanaNewLabel"_s}));
    QCOMPARE(text(u"Title"_s), u"at 0%"_s);
    QCOMPARE(
        m_host->lastArguments(u"XAyatanaNewLabel"_s), QVariantList({u"5h: 0%"_s, u"5h: 100%"_s}));
}

void SniPresentationTest::nothingIsSignalledToNobody()
{
    start(someItem());
    m_item->present(withTitle(u"b"_s));
    m_item->present(withLabelText(u"c"_s));
    QVERIFY(m_host->heard().isEmpty());
    QCOMPARE(text(u"XAyatanaLabel"_s), u"c"_s);
    m_item->present(withLabelText(u"d"_s));
    QCOMPARE(m_host->heard(), QStringList{u"XAyatanaNewLabel"_s});
}

void SniPresentationTest::aClickCarriesThePlaceThatCanBeGlobal_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<bool>("global");

    QTest::newRow("top panel") << 1211 << 14 << true;
    QTest::newRow("left panel") << 10 << 700 << true;
    QTest::newRow("screen left of the first") << -600 << 14 << true;
    QTest::newRow("none") << 0 << 0 << false;
    QTest::newRow("within the item") << 10 << 14 << false;
    QTest::newRow("a fixed place") << 0 << 28 << false;
    QTest::newRow("beyond all screens") << 40'000 << 14 << false;
    QTest::newRow("the largest") << std::numeric_limits<int>::max()
                                 << std::numeric_limits<int>::max() << false;
    QTest::newRow("the smallest") << std::numeric_limits<int>::min()
                                  << std::numeric_limits<int>::min() << false;
}

void SniPresentationTest::aClickCarriesThePlaceThatCanBeGlobal()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(bool, global);
    start(someItem());
    QSignalSpy clicked(m_item.get(), &Presentation::clicked);
    QCOMPARE(m_host->call(u"Activate"_s, {x, y}).type(), QDBusMessage::ReplyMessage);
    QTRY_COMPARE(clicked.size(), 1);
    const auto anchor = clicked[0][0].value<ItemAnchor>();
    QVERIFY(!anchor.bounds);
    QCOMPARE(anchor.pointer, global ? std::optional(QPoint(x, y)) : std::nullopt);
}

void SniPresentationTest::theContextMenuOfHostsWithoutMenusIsAClick()
{
    start(someItem());
    QSignalSpy clicked(m_item.get(), &Presentation::clicked);
    QVERIFY(!isError(m_host->call(u"ContextMenu"_s, {900, 14})));
    QTRY_COMPARE(clicked.size(), 1);
    QCOMPARE(clicked[0][0].value<ItemAnchor>().pointer, std::optional(QPoint(900, 14)));
}

void SniPresentationTest::otherButtonsWheelsAndTokensDoNothing()
{
    start(someItem());
    QSignalSpy clicked(m_item.get(), &Presentation::clicked);
    QVERIFY(!isError(m_host->call(u"SecondaryActivate"_s, {900, 14})));
    QVERIFY(!isError(m_host->call(u"XAyatanaSecondaryActivate"_s, {0U})));
    QVERIFY(!isError(m_host->call(u"Scroll"_s, {120, u"vertical"_s})));
    QVERIFY(!isError(m_host->call(u"Scroll"_s, {-1, u"Horizontal"_s})));
    QVERIFY(!isError(m_host->call(u"ProvideXdgActivationToken"_s, {u"kwin-1"_s})));
    // The click that counts comes last: none of the others was one.
    m_host->call(u"Activate"_s, {901, 14});
    QTRY_COMPARE(clicked.size(), 1);
    QCOMPARE(clicked[0][0].value<ItemAnchor>().pointer, std::optional(QPoint(901, 14)));
}

void SniPresentationTest::theMenuOpensRefreshesConfiguresAndQuits()
{
    start(someItem());
    const auto path = m_host->readAll().value(u"Menu"_s).value<QDBusObjectPath>().path();
    FakeHost menu(m_watcher->items().constFirst(), path, u"com.canonical.dbusmenu"_s, {});
    const auto answer = menu.call(u"GetLayout"_s, {0, -1, QStringList()});
    const auto layout = qdbus_cast<DBusMenuLayout>(answer.arguments().value(1));
    QStringList labels;
    QMap<QString, int> idOf;
    for (const auto &entry : layout.children) {
        const QString label = entry.properties.value(u"label"_s, u"-"_s).toString();
        labels.append(label);
        idOf.insert(label, entry.id);
    }
    QCOMPARE(labels, QStringList({u"Open"_s, u"Refresh"_s, u"Settings"_s, u"-"_s, u"Quit"_s}));

    QSignalSpy clicked(m_item.get(), &Presentation::clicked);
    QSignalSpy refresh(m_item.get(), &Presentation::refreshRequested);
    QSignalSpy settings(m_item.get(), &Presentation::settingsRequested);
    QSignalSpy quit(m_item.get(), &Presentation::quitRequested);
    const auto choose = [&menu, &idOf](const QString &label) {
        menu.call(u"Event"_s,
            {idOf.value(label), u"clicked"_s, QVariant::fromValue(QDBusVariant(QString())), 0U});
    };
    choose(u"Open"_s);
    QTRY_COMPARE(clicked.size(), 1);
    QVERIFY(!clicked[0][0].value<ItemAnchor>().pointer);
    choose(u"Refresh"_s);
    QTRY_COMPARE(refresh.size(), 1);
    choose(u"Settings"_s);
    QTRY_COMPARE(settings.size(), 1);
    choose(u"-"_s);
    choose(u"Quit"_s);
    QTRY_COMPARE(quit.size(), 1);
    QCOMPARE(clicked.size() + refresh.size(), 2);
}

void SniPresentationTest::onlyThePortableFormHasAMenu_data()
{
    QTest::addColumn<SniForm>("form");
    QTest::addColumn<bool>("hasMenu");
    QTest::newRow("wide") << SniForm::Wide << false;
    QTest::newRow("badge") << SniForm::Badge << false;
    QTest::newRow("portable") << SniForm::Portable << true;
}

// Hosts that find the property show a menu on a right click, an empty one if need be.
void SniPresentationTest::onlyThePortableFormHasAMenu()
{
    QFETCH(SniForm, form);
    QFETCH(bool, hasMenu);
    start(someItem(), form);
    QCOMPARE(m_host->readAll().contains(u"Menu"_s), hasMenu);
    QCOMPARE(isError(m_host->read(u"Menu"_s)), !hasMenu);
    QCOMPARE(
        isError(m_host->program().call(m_watcher->items().constFirst(),
            u"/StatusNotifierItem/Menu"_s, u"com.canonical.dbusmenu"_s, u"AboutToShow"_s, {0})),
        !hasMenu);
    QCOMPARE(m_host->readAll().value(u"Title"_s).toString(), text(u"Title"_s));
}

void SniPresentationTest::theWideFormShowsTheWholeLabel()
{
    start(someItem(), SniForm::Wide);
    const auto pixmaps = qdbus_cast<SniPixmaps>(m_host->readAll().value(u"IconPixmap"_s));
    QCOMPARE(pixmaps.size(), 2);
    const int needed = m_painter.size(someItem().label, {.height = 22}).width();
    QCOMPARE(pixmaps[0].height, 22);
    QCOMPARE(pixmaps[0].width, needed);
    QCOMPARE(pixmaps[1].height, 44);
    QCOMPARE(pixmaps[1].width, 2 * needed);
    // Background of its own, rounded at the corners.
    const auto pixel = [&](int x, int y) {
        return pixmaps[0].bytes.mid(qsizetype{4} * (y * pixmaps[0].width + x), 4).toHex();
    };
    QCOMPARE(pixel(0, 0).left(2), QByteArray("00"));
    QCOMPARE(pixel(needed / 2, 0), QByteArray("ff202226"));
}

void SniPresentationTest::theWideFormKeepsItsWidthWhileOnlyNumbersChange()
{
    const auto widthFor = [this](const QString &label) {
        m_item->present(withLabelText(label));
        const auto isShown = [&] { return text(u"XAyatanaLabel"_s) == label; };
        return QTest::qWaitFor(isShown)
            ? qdbus_cast<SniPixmaps>(m_host->readAll().value(u"IconPixmap"_s)).value(0).width
            : -1;
    };
    start(withLabelText(u"5h: 99%"_s), SniForm::Wide);
    const int narrow = widthFor(u"5h: 98%"_s);
    const int wide = widthFor(u"5h: 100%"_s);
    QVERIFY(wide > narrow);
    QCOMPARE(widthFor(u"5h: 7%"_s), wide);
}

void SniPresentationTest::picturesAreInTheDesktopsFontAndFollowIt_data()
{
    QTest::addColumn<SniForm>("form");
    QTest::newRow("wide") << SniForm::Wide;
    QTest::newRow("badge") << SniForm::Badge;
    QTest::newRow("portable") << SniForm::Portable;
}

void SniPresentationTest::picturesAreInTheDesktopsFontAndFollowIt()
{
    QFETCH(SniForm, form);
    PresentedItem item = someItem();
    item.label.badge.numbers = {{.text = u"80"_s}, {.text = u"7"_s}};
    const auto pictures
        = [this] { return qdbus_cast<SniPixmaps>(m_host->readAll().value(u"IconPixmap"_s)); };
    m_appearance.setFamily(u"DejaVu Serif"_s);
    start(item, form);
    const SniPixmaps serif = pictures();
    m_appearance.setFamily(u"DejaVu Sans Mono"_s);
    QTRY_COMPARE(m_host->heard(), QStringList{u"NewIcon"_s});
    const SniPixmaps mono = pictures();
    QVERIFY(mono != serif);
    // What else the desktop changes of its look is none of the pictures' business.
    m_appearance.setDark(false);
    m_appearance.setFamily(u"DejaVu Serif"_s);
    QTRY_COMPARE(m_host->heard(), (QStringList{u"NewIcon"_s, u"NewIcon"_s}));
    QVERIFY(pictures() == serif);
}

void SniPresentationTest::malformedCallsGetErrors_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QVariantList>("arguments");

    const QString item = itemInterface;
    const QString reads = properties;
    QTest::newRow("unknown property") << reads << u"Get"_s << QVariantList{item, u"Colour"_s};
    QTest::newRow("property of no interface")
        << reads << u"Get"_s << QVariantList{u"a.b"_s, u"Id"_s};
    QTest::newRow("properties of no interface") << reads << u"GetAll"_s << QVariantList{u"a.b"_s};
    QTest::newRow("property without a name") << reads << u"Get"_s << QVariantList{item};
    QTest::newRow("writing") << reads << u"Set"_s
                             << QVariantList{
                                    item, u"Title"_s, QVariant::fromValue(QDBusVariant(u"x"_s))};
    QTest::newRow("no place") << item << u"Activate"_s << QVariantList{};
    QTest::newRow("half a place") << item << u"Activate"_s << QVariantList{1};
    QTest::newRow("place in words") << item << u"Activate"_s << QVariantList{u"1"_s, u"2"_s};
    QTest::newRow("wheel without a direction") << item << u"Scroll"_s << QVariantList{1};
    QTest::newRow("unknown method") << item << u"Explode"_s << QVariantList{};
    QTest::newRow("slot of ours") << item << u"lose"_s << QVariantList{};
    QTest::newRow("slot of every object") << item << u"deleteLater"_s << QVariantList{};
}

void SniPresentationTest::malformedCallsGetErrors()
{
    QFETCH(QString, interface);
    QFETCH(QString, member);
    QFETCH(QVariantList, arguments);
    start(someItem());
    QSignalSpy clicked(m_item.get(), &Presentation::clicked);
    QSignalSpy lost(m_item.get(), &Presentation::lost);

    QVERIFY(isError(m_host->program().call(
        m_watcher->items().constFirst(), itemPath, interface, member, arguments)));

    QCOMPARE(text(u"Title"_s), someItem().description.title);
    m_host->call(u"Activate"_s, {900, 14});
    QTRY_COMPARE(clicked.size(), 1);
    QCOMPARE(clicked[0][0].value<ItemAnchor>().pointer, std::optional(QPoint(900, 14)));
    QVERIFY(lost.isEmpty());
}

void SniPresentationTest::aFloodIsAnsweredToTheEnd()
{
    start(someItem());
    QSignalSpy clicked(m_item.get(), &Presentation::clicked);
    auto &bus = m_host->program().bus();
    for (int i = 0; i < 1000; ++i) {
        auto activate = QDBusMessage::createMethodCall(
            m_watcher->items().constFirst(), itemPath, itemInterface, u"Activate"_s);
        activate << 900 << 14;
        bus.send(activate);
        auto nonsense = QDBusMessage::createMethodCall(
            m_watcher->items().constFirst(), itemPath, itemInterface, u"Nonsense"_s);
        bus.send(nonsense);
    }
    QVERIFY(!m_host->readAll().isEmpty());
    QTRY_COMPARE(clicked.size(), 1000);
}

QTEST_MAIN(SniPresentationTest)

#include "sni_presentation_test.moc"
