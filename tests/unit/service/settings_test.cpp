#include "service/settings.h"
#include "support/full_disk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <cmath>
#include <limits>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::service;

namespace {

/// All twelve, read.
struct AllSettings {
    explicit AllSettings(const SettingsStore &store)
        : refreshInterval(store.value(settings::refreshInterval))
        , showPercentageInMenuBar(store.value(settings::showPercentageInMenuBar))
        , showFiveHourInMenuBar(store.value(settings::showFiveHourInMenuBar))
        , showWeeklyInMenuBar(store.value(settings::showWeeklyInMenuBar))
        , showIconInMenuBar(store.value(settings::showIconInMenuBar))
        , useColoredStatusIndicator(store.value(settings::useColoredStatusIndicator))
        , notifyOnLowQuota(store.value(settings::notifyOnLowQuota))
        , lowQuotaThreshold(store.value(settings::lowQuotaThreshold))
        , showGeminiInToolbar(store.value(settings::showGeminiInToolbar))
        , showArgonInToolbar(store.value(settings::showArgonInToolbar))
        , showClaudeInToolbar(store.value(settings::showClaudeInToolbar))
        , toolbarLabelStyle(store.value(settings::toolbarLabelStyle))
    {
    }

    double refreshInterval;
    bool showPercentageInMenuBar;
    bool showFiveHourInMenuBar;
    bool showWeeklyInMenuBar;
    bool showIconInMenuBar;
    bool useColoredStatusIndicator;
    bool notifyOnLowQuota;
    double lowQuotaThreshold;
    bool showGeminiInToolbar;
    bool showArgonInToolbar;
    bool showClaudeInToolbar;
    QString toolbarLabelStyle;
};

} // namespace

class SettingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_folder.emplace().isValid()); }
    void cleanup() { m_folder.reset(); }

    void aMissingFileGivesTheDefaults() { expectDefaults(SettingsStore(path())); }

    void anEmptyFileGivesTheDefaults()
    {
        write("");
        expectDefaults(SettingsStore(path()));
    }

    void aFolderInPlaceOfTheFileGivesTheDefaults()
    {
        QVERIFY(QDir().mkpath(path()));
        SettingsStore store(path());
        expectDefaults(store);
        expectChangesToHold(store);
        QVERIFY(QFileInfo(path()).isDir());
    }

    void aPipeInPlaceOfTheFileGivesTheDefaultsAtOnce()
    {
        QCOMPARE(mkfifo(path().toLocal8Bit().constData(), 0600), 0);
        SettingsStore store(path());
        expectDefaults(store);
        expectChangesToHold(store);
    }

    void anEndlessDeviceInPlaceOfTheFileGivesTheDefaultsAtOnce()
    {
        QVERIFY(QFile::link(u"/dev/zero"_s, path()));
        SettingsStore store(path());
        expectDefaults(store);
        expectChangesToHold(store);
    }

    void aHugeFileGivesTheDefaultsAndIsLeftAlone()
    {
        write("[General]\nrefreshInterval=300\n");
        QVERIFY(QFile::resize(path(), 2LL * 1024 * 1024));
        {
            SettingsStore store(path());
            expectDefaults(store);
            expectChangesToHold(store);
        }
        QCOMPARE(QFileInfo(path()).size(), 2LL * 1024 * 1024);
    }

    void aCorruptFileGivesTheDefaults_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("bytes") << QByteArray("\x00\xff\xfe\x80\n\n\x01[[[", 10);
        QTest::newRow("no sections") << QByteArray("refreshInterval\nshowIconInMenuBar\n");
        QTest::newRow("open section") << QByteArray("[Gener\nrefreshInterval=300\n");
        QTest::newRow("another format") << QByteArray("{\"refreshInterval\": 300}");
        QTest::newRow("bad escapes")
            << QByteArray("[%zz]\n%00%=3\ntoolbarLabelStyle=\"\\x110000zz");
        QTest::newRow("values of other types")
            << QByteArray("[General]\nrefreshInterval=@Size(2 3)\n"
                          "showIconInMenuBar=@Invalid()\ntoolbarLabelStyle=@Rect(1 2 3 4)\n");
    }
    void aCorruptFileGivesTheDefaults()
    {
        QFETCH(QByteArray, content);
        write(content);
        SettingsStore store(path());
        expectDefaults(store);
        expectChangesToHold(store);
    }

    void aFileThatCannotBeWrittenCostsOnlyWhatWasToBeKept()
    {
        // A path through a file: nobody can write there, not even root.
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        SettingsStore store(path() + u"/brimwatch.conf");
        expectDefaults(store);
        expectChangesToHold(store);
    }

    void aReadOnlyFileIsRead()
    {
        write("[General]\nrefreshInterval=300\nshowIconInMenuBar=false\n");
        QVERIFY(QFile::setPermissions(path(), QFileDevice::ReadOwner));
        QVERIFY(QFile::setPermissions(
            m_folder->path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        {
            SettingsStore store(path());
            QCOMPARE(store.value(settings::refreshInterval), 300.0);
            QCOMPARE(store.value(settings::showIconInMenuBar), false);
            expectChangesToHold(store);
        }
        QVERIFY(QFile::setPermissions(m_folder->path(),
            QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
    }

    void aFolderInPlaceOfTheLockHoldsNobodyUp()
    {
        // QSettings would wait for it, for ever.
        QVERIFY(QDir().mkpath(path() + u".lock"_s));
        {
            SettingsStore store(path());
            expectChangesToHold(store);
        }
        QCOMPARE(SettingsStore(path()).value(settings::lowQuotaThreshold), 35.5);
    }

    void aPipeThatTakesThePlaceOfTheFileLaterHoldsNobodyUp()
    {
        write("[General]\nrefreshInterval=300\n");
        SettingsStore store(path());
        QVERIFY(QFile::remove(path()));
        QCOMPARE(mkfifo(path().toLocal8Bit().constData(), 0600), 0);
        expectChangesToHold(store);
        store.flush();
        QCOMPARE(store.value(settings::refreshInterval), 300.0);
        QVERIFY(!QFileInfo(path()).isFile());
    }

    void nestedVariantsDoNotOverflowTheStack()
    {
        QByteArray nested;
        for (int depth = 0; depth < 40'000; ++depth)
            nested += R"(@Variant(\0\0\0\t)";
        write("[General]\nother=" + nested
            + "\nshowArgonInToolbar=true\nrefreshInterval=" + nested.first(1000) + '\n');
        const SettingsStore store(path());
        QCOMPARE(store.value(settings::showArgonInToolbar), true);
        QCOMPARE(store.value(settings::refreshInterval), 60.0);
    }

    void aFullDiskCostsTheChangeAndKeepsTheFile()
    {
        write("[General]\nrefreshInterval=300\n");
        {
            SettingsStore store(path());
            {
                const brimwatch::test::FullDisk disk;
                store.setValue(settings::lowQuotaThreshold, 35.5);
                store.flush();
            }
            QCOMPARE(content(), QByteArray("[General]\nrefreshInterval=300\n"));
            QCOMPARE(store.value(settings::lowQuotaThreshold), 35.5);
            // The next change that can be written brings it along.
            store.setValue(settings::showArgonInToolbar, true);
        }
        const SettingsStore store(path());
        QCOMPARE(store.value(settings::lowQuotaThreshold), 35.5);
        QCOMPARE(store.value(settings::showArgonInToolbar), true);
    }

    void whatElseIsInTheFileIsKept_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("other keys and sections")
            << QByteArray("; mine\n[General]\nother=1, 2\nrefreshInterval = 30\n\n[Other]\n"
                          "refreshInterval=7\n")
            << QByteArray("; mine\n[General]\nother=1, 2\nrefreshInterval=300\n\n[Other]\n"
                          "refreshInterval=7\n");
        QTest::newRow("another section alone")
            << QByteArray("[Other]\nrefreshInterval=7\n")
            << QByteArray("[General]\nrefreshInterval=300\n\n[Other]\nrefreshInterval=7\n");
        QTest::newRow("a new key goes behind the last one of its section")
            << QByteArray("[General]\nother=1\n\n[Other]\nx=1\n")
            << QByteArray("[General]\nother=1\nrefreshInterval=300\n\n[Other]\nx=1\n");
        QTest::newRow("of several lines the last one counts")
            << QByteArray("[General]\nrefreshInterval=1\nrefreshInterval=2\n")
            << QByteArray("[General]\nrefreshInterval=1\nrefreshInterval=300\n");
        QTest::newRow("no end of line") << QByteArray("[General]\nother=1")
                                        << QByteArray("[General]\nother=1\nrefreshInterval=300\n");
        QTest::newRow("a backslash at the end")
            << QByteArray("[General]\nother=\"\\")
            << QByteArray("[General]\nother=\"\\\n\nrefreshInterval=300\n");
        QTest::newRow("a comment behind the header")
            << QByteArray("[General] ; mine\nrefreshInterval=1\n")
            << QByteArray("[General] ; mine\nrefreshInterval=300\n");
        QTest::newRow("a value that goes on in the next line")
            << QByteArray("[General]\nnote=a \\\nrefreshInterval=7\nx=1\n")
            << QByteArray("[General]\nnote=a \\\nrefreshInterval=7\nx=1\nrefreshInterval=300\n");
        QTest::newRow("a byte-order mark")
            << QByteArray("\xef\xbb\xbf[Other]\nrefreshInterval=7\n")
            << QByteArray(
                   "\xef\xbb\xbf[General]\nrefreshInterval=300\n\n[Other]\nrefreshInterval=7\n");
        QTest::newRow("keys before any section")
            << QByteArray("refreshInterval=1\n") << QByteArray("refreshInterval=300\n");
    }
    void whatElseIsInTheFileIsKept()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        write(before);
        SettingsStore(path()).setValue(settings::refreshInterval, 300);
        QCOMPARE(content(), after);
        QCOMPARE(SettingsStore(path()).value(settings::refreshInterval), 300.0);
    }

    void textsAreWrittenAndReadAsQSettingsDoes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("plain") << u"icon"_s;
        QTest::newRow("empty") << QString();
        QTest::newRow("blanks") << u" a b "_s;
        QTest::newRow("quotes") << u"a \"b\" 'c' \\ d"_s;
        QTest::newRow("separators") << u"a, b; c = d [e]"_s;
        QTest::newRow("control characters") << u"a\nb\tc\rd\x01"
                                               "2"_s;
        QTest::newRow("an at") << u"@Variant(x)"_s;
        QTest::newRow("letters") << u"Grüße ✦ \U0001F680"_s;
    }
    void textsAreWrittenAndReadAsQSettingsDoes()
    {
        QFETCH(QString, text);
        SettingsStore(path()).setValue(settings::toolbarLabelStyle, text);
        QCOMPARE(SettingsStore(path()).value(settings::toolbarLabelStyle), text);
        const QString key = QString::fromLatin1(settings::toolbarLabelStyle.key);
        QCOMPARE(QSettings(path(), QSettings::IniFormat).value(key).toString(), text);
        QVERIFY(QFile::remove(path()));
        QSettings(path(), QSettings::IniFormat).setValue(key, text);
        QCOMPARE(SettingsStore(path()).value(settings::toolbarLabelStyle), text);
    }

    void valuesOfTheWrongTypeGiveTheDefaults_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("words") << QByteArray(
            "refreshInterval=often\nlowQuotaThreshold=true\nshowIconInMenuBar=maybe\n"
            "showArgonInToolbar=2x\nshowClaudeInToolbar=20\n");
        QTest::newRow("nothing") << QByteArray(
            "refreshInterval=\nlowQuotaThreshold=\nshowIconInMenuBar=\nshowArgonInToolbar=\n");
        QTest::newRow("lists") << QByteArray(
            "refreshInterval=1, 2\nlowQuotaThreshold=1, 2\nshowIconInMenuBar=true, true\n"
            "showArgonInToolbar=true, true\ntoolbarLabelStyle=icon, letter\n");
        QTest::newRow("no finite numbers")
            << QByteArray("refreshInterval=nan\nlowQuotaThreshold=inf\nshowArgonInToolbar=nan\n");
        QTest::newRow("too large a number")
            << QByteArray("refreshInterval=1e999\nlowQuotaThreshold=-1e999\n");
        QTest::newRow("bytes") << QByteArray(
            "refreshInterval=@ByteArray(20)\ntoolbarLabelStyle=@ByteArray(icon)\n");
    }
    void valuesOfTheWrongTypeGiveTheDefaults()
    {
        QFETCH(QByteArray, content);
        write("[General]\n" + content);
        expectDefaults(SettingsStore(path()));
    }

    void aTextThatSaysAValueIsThatValue_data()
    {
        QTest::addColumn<QByteArray>("on");
        QTest::addColumn<QByteArray>("off");
        QTest::addColumn<QByteArray>("twenty");
        QTest::newRow("plain") << QByteArray("true") << QByteArray("false") << QByteArray("20");
        QTest::newRow("digits") << QByteArray("1") << QByteArray("0") << QByteArray("2e1");
        QTest::newRow("capitals") << QByteArray("TRUE") << QByteArray("False")
                                  << QByteArray("20.0");
        QTest::newRow("quoted") << QByteArray("\"true\"") << QByteArray("\"0\"")
                                << QByteArray("\" 20 \"");
    }
    void aTextThatSaysAValueIsThatValue()
    {
        QFETCH(QByteArray, on);
        QFETCH(QByteArray, off);
        QFETCH(QByteArray, twenty);
        write("[General]\nshowArgonInToolbar=" + on + "\nshowGeminiInToolbar=" + off
            + "\nrefreshInterval=" + twenty + '\n');
        const SettingsStore store(path());
        QCOMPARE(store.value(settings::showArgonInToolbar), true);
        QCOMPARE(store.value(settings::showGeminiInToolbar), false);
        QCOMPARE(store.value(settings::refreshInterval), 20.0);
    }

    void anUnknownLabelStyleIsKeptAsStored()
    {
        write("[General]\ntoolbarLabelStyle=roman\nshowIconInMenuBar=true\n");
        {
            SettingsStore store(path());
            QCOMPARE(store.value(settings::toolbarLabelStyle), u"roman"_s);
            store.setValue(settings::showIconInMenuBar, false);
        }
        QCOMPARE(SettingsStore(path()).value(settings::toolbarLabelStyle), u"roman"_s);
    }

    void aNumberThatNoPickerOffersIsKeptAsStored()
    {
        write("[General]\nrefreshInterval=-17.25\nlowQuotaThreshold=250\n");
        const SettingsStore store(path());
        QCOMPARE(store.value(settings::refreshInterval), -17.25);
        QCOMPARE(store.value(settings::lowQuotaThreshold), 250.0);
    }

    void whatIsNoNumberIsStoredAsTheDefault()
    {
        SettingsStore store(path());
        for (const double number : {std::nan(""), std::numeric_limits<double>::infinity(),
                 -std::numeric_limits<double>::infinity()}) {
            store.setValue(settings::lowQuotaThreshold, 50);
            store.setValue(settings::lowQuotaThreshold, number);
            QCOMPARE(store.value(settings::lowQuotaThreshold), 20.0);
        }
    }

    void everySettingIsStoredUnderItsOwnKey()
    {
        {
            SettingsStore store(path());
            store.setValue(settings::refreshInterval, 120.5);
            store.setValue(settings::showPercentageInMenuBar, false);
            store.setValue(settings::showFiveHourInMenuBar, false);
            store.setValue(settings::showWeeklyInMenuBar, false);
            store.setValue(settings::showIconInMenuBar, false);
            store.setValue(settings::useColoredStatusIndicator, false);
            store.setValue(settings::notifyOnLowQuota, false);
            store.setValue(settings::lowQuotaThreshold, 12.5);
            store.setValue(settings::showGeminiInToolbar, false);
            store.setValue(settings::showArgonInToolbar, true);
            store.setValue(settings::showClaudeInToolbar, true);
            store.setValue(settings::toolbarLabelStyle, u"a, \"b\" ✦"_s);
        }
        const QSettings file(path(), QSettings::IniFormat);
        QStringList keys = file.allKeys();
        keys.sort();
        QCOMPARE(keys,
            QStringList({u"lowQuotaThreshold"_s, u"notifyOnLowQuota"_s, u"refreshInterval"_s,
                u"showArgonInToolbar"_s, u"showClaudeInToolbar"_s, u"showFiveHourInMenuBar"_s,
                u"showGeminiInToolbar"_s, u"showIconInMenuBar"_s, u"showPercentageInMenuBar"_s,
                u"showWeeklyInMenuBar"_s, u"toolbarLabelStyle"_s, u"useColoredStatusIndicator"_s}));

        const AllSettings read{SettingsStore(path())};
        QCOMPARE(read.refreshInterval, 120.5);
        QCOMPARE(read.showPercentageInMenuBar, false);
        QCOMPARE(read.showFiveHourInMenuBar, false);
        QCOMPARE(read.showWeeklyInMenuBar, false);
        QCOMPARE(read.showIconInMenuBar, false);
        QCOMPARE(read.useColoredStatusIndicator, false);
        QCOMPARE(read.notifyOnLowQuota, false);
        QCOMPARE(read.lowQuotaThreshold, 12.5);
        QCOMPARE(read.showGeminiInToolbar, false);
        QCOMPARE(read.showArgonInToolbar, true);
        QCOMPARE(read.showClaudeInToolbar, true);
        QCOMPARE(read.toolbarLabelStyle, u"a, \"b\" ✦"_s);
    }

    void theUsersStoreLiesInTheConfigurationFolderAndNothingElseCounts()
    {
        const QString folder = QDir::homePath() + u"/.config";
        // QSettings would read this one too: it is for several programs of one organization.
        QVERIFY(QDir().mkpath(folder));
        {
            QFile shared(folder + u"/brimwatch.conf");
            QVERIFY(shared.open(QIODevice::WriteOnly));
            shared.write("[General]\nrefreshInterval=17\n");
        }
        {
            SettingsStore store;
            QCOMPARE(store.value(settings::refreshInterval), 60.0);
            store.setValue(settings::refreshInterval, 300);
        }
        QFile file(folder + u"/brimwatch/brimwatch.conf");
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("[General]\nrefreshInterval=300\n"));
    }

private:
    QByteArray content() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString path() const { return m_folder->filePath(u"settings.conf"_s); }

    void write(const QByteArray &content) const
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }

    static void expectDefaults(const SettingsStore &store)
    {
        const AllSettings read(store);
        QCOMPARE(read.refreshInterval, 60.0);
        QCOMPARE(read.showPercentageInMenuBar, true);
        QCOMPARE(read.showFiveHourInMenuBar, true);
        QCOMPARE(read.showWeeklyInMenuBar, true);
        QCOMPARE(read.showIconInMenuBar, true);
        QCOMPARE(read.useColoredStatusIndicator, true);
        QCOMPARE(read.notifyOnLowQuota, true);
        QCOMPARE(read.lowQuotaThreshold, 20.0);
        QCOMPARE(read.showGeminiInToolbar, true);
        QCOMPARE(read.showArgonInToolbar, false);
        QCOMPARE(read.showClaudeInToolbar, false);
        QCOMPARE(read.toolbarLabelStyle, u"letter"_s);
    }

    /// The user's changes count while the program runs, whatever becomes of the file.
    static void expectChangesToHold(SettingsStore &store)
    {
        store.setValue(settings::showArgonInToolbar, true);
        store.setValue(settings::lowQuotaThreshold, 35.5);
        store.setValue(settings::toolbarLabelStyle, u"icon"_s);
        QCoreApplication::processEvents();
        QCOMPARE(store.value(settings::showArgonInToolbar), true);
        QCOMPARE(store.value(settings::lowQuotaThreshold), 35.5);
        QCOMPARE(store.value(settings::toolbarLabelStyle), u"icon"_s);
    }

    std::optional<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(SettingsTest)
#include "settings_test.moc"
