#include "platform/linux/tray/host_detector.h"
#include "platform/linux/x11/x_connection.h"
#include "support/fake_bus.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;
using brimwatch::test::FakeBus;
using Manners = FakeBus::Manners;

class HostDetectorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { qunsetenv("DISPLAY"); }

    void aWatcherOnASlowBusIsFound()
    {
        FakeBus bus;
        bus.owners = {{u"org.kde.StatusNotifierWatcher"_s, u":1.5"_s}};
        bus.onGetNameOwner = {Manners::TimesOut, Manners::TimesOut, Manners::Answers};
        XConnection x;
        HostDetector detector(x, bus.connection(), [](qint64) { return u"/usr/bin/waybar"_s; });
        detector.start();
        QTRY_COMPARE(detector.host().watcher, u":1.5"_s);
        QCOMPARE(bus.asked, 3);
    }
};

QTEST_GUILESS_MAIN(HostDetectorTest)
#include "host_detector_test.moc"
