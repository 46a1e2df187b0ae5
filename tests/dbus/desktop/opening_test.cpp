#include "dbus/desktop/fake_mail_portal.h"
#include "platform/linux/desktop/desktop_opener.h"
#include "service/diagnostics.h"
#include "support/private_display.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

/// The user's own handlers, as desktop entries in an empty home, and what they are given.
class OpeningTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QString applications
            = QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation);
        const QString config
            = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
        QVERIFY(QDir().mkpath(applications));
        QVERIFY(QDir().mkpath(config));
        m_received = QDir::home().filePath(u"received"_s);

        const QString handler = QDir::home().filePath(u"handler"_s);
        write(handler,
            "#!/bin/sh\nfor argument; do printf '%s\\n' \"$argument\"; done >'"
                + m_received.toUtf8() + ".new'\nmv '" + m_received.toUtf8() + ".new' '"
                + m_received.toUtf8() + "'\n");
        QVERIFY(
            QFile::setPermissions(handler, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        for (const QByteArray kind : {"mail", "folder", "web"}) {
            write(applications + u'/' + QString::fromLatin1(kind) + ".desktop"_L1,
                "[Desktop Entry]\nType=Application\nName=" + kind + "\nExec=" + handler.toUtf8()
                    + ' ' + kind + " %u\nMimeType=" + mimeType(kind) + ";\n");
        }
        QByteArray defaults = "[Default Applications]\n";
        for (const QByteArray kind : {"mail", "folder", "web"})
            defaults += mimeType(kind) + '=' + kind + ".desktop\n";
        write(config + "/mimeapps.list"_L1, defaults);
    }
    void cleanup()
    {
        QFile::remove(m_received);
        qunsetenv("XDG_CURRENT_DESKTOP");
    }

    void whatIsOpenedReachesItsHandlerUnchanged_data()
    {
        QTest::addColumn<QByteArray>("desktop");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QUrl>("url");
        const QString body
            = u"Hi,\n\n[x] 100% sure? a+b/c==&d;e 'f' \"g\" $HOME `id` \\n é 🧠 #h\n"_s;
        const QUrl mail = service::mailUrl(u"support@brimwatch.example"_s, u"Brimwatch"_s, body);
        const QUrl longMail
            = service::mailUrl(u"support@brimwatch.example"_s, u"Brimwatch"_s, body.repeated(100));
        const QUrl page(u"http://127.0.0.1:4711/a?b=c&d=%20e"_s);
        // Window managers name no desktop that the opening tools know.
        for (const QByteArray desktop : {"sway", "GNOME"}) {
            QTest::addRow("mail, %s", desktop.constData()) << desktop << u"mail"_s << mail;
            QTest::addRow("long mail, %s", desktop.constData()) << desktop << u"mail"_s << longMail;
            QTest::addRow("page, %s", desktop.constData()) << desktop << u"web"_s << page;
        }
    }
    void whatIsOpenedReachesItsHandlerUnchanged()
    {
        QFETCH(QByteArray, desktop);
        QFETCH(QString, kind);
        QFETCH(QUrl, url);
        qputenv("XDG_CURRENT_DESKTOP", desktop);
        platform::DesktopOpener opener;
        opener.openUrl(url);
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(m_received), timeout);
        QCOMPARE(received(), (QStringList{kind, QString::fromLatin1(url.toEncoded())}));
    }

    void whereThereIsAMailPortalItGetsTheDraft()
    {
        const QString address = u"support+reports@brimwatch.example"_s;
        const QString body
            = u"Hi,\n\n[x] 100% sure? a+b/c==&d;e 'f' \"g\" $HOME `id` \\n é 🧠 #h\n"_s.repeated(
                50);
        test::FakeMailPortal portal;
        platform::DesktopOpener opener;
        opener.openUrl(service::mailUrl(address, u"Brimwatch & more"_s, body));
        QTRY_COMPARE_WITH_TIMEOUT(portal.drafts.size(), 1, timeout);
        const QVariantMap &draft = portal.drafts.constFirst();
        QCOMPARE(draft.value(u"address"_s), QVariant(address));
        QCOMPARE(draft.value(u"subject"_s), QVariant(u"Brimwatch & more"_s));
        QCOMPARE(draft.value(u"body"_s), QVariant(body));
        // The command line of the page's handler is the first that there is.
        opener.openUrl(QUrl(u"http://127.0.0.1:4711/"_s));
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(m_received), timeout);
        QCOMPARE(received().constFirst(), u"web"_s);
    }

    void aDraftThatThePortalCannotOpenReachesTheMailProgram_data()
    {
        QTest::addColumn<test::FakeMailPortal::Manners>("manners");
        QTest::newRow("refuses") << test::FakeMailPortal::Manners::Refuses;
        QTest::newRow("fails later") << test::FakeMailPortal::Manners::Fails;
        QTest::newRow("is silent") << test::FakeMailPortal::Manners::IsSilent;
    }
    void aDraftThatThePortalCannotOpenReachesTheMailProgram()
    {
        QFETCH(test::FakeMailPortal::Manners, manners);
        test::FakeMailPortal portal(manners);
        platform::DesktopOpener opener;
        const QUrl mail
            = service::mailUrl(u"support@brimwatch.example"_s, u"Brimwatch"_s, u"a b"_s);
        opener.openUrl(mail);
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(m_received), timeout);
        QCOMPARE(received(), (QStringList{u"mail"_s, QString::fromLatin1(mail.toEncoded())}));
        QCOMPARE(portal.drafts.size(), 1);
    }

    void aDraftThatTheUserDeclinesIsNotOpenedInAnotherWay()
    {
        test::FakeMailPortal portal(test::FakeMailPortal::Manners::IsDeclined);
        platform::DesktopOpener opener;
        opener.openUrl(service::mailUrl(u"support@brimwatch.example"_s, u"Brimwatch"_s, u"a b"_s));
        QTRY_COMPARE_WITH_TIMEOUT(portal.drafts.size(), 1, timeout);
        opener.openUrl(QUrl(u"http://127.0.0.1:4711/"_s));
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(m_received), timeout);
        QCOMPARE(received().constFirst(), u"web"_s);
    }

    void aFolderReachesTheFileBrowser_data()
    {
        QTest::addColumn<QByteArray>("desktop");
        QTest::addColumn<QString>("name");
        for (const QByteArray desktop : {"sway", "GNOME"}) {
            QTest::addRow("daemons, %s", desktop.constData())
                << desktop << u".gemini/antigravity/daemon"_s;
            QTest::addRow("odd, %s", desktop.constData()) << desktop << u"a b'é"_s;
        }
    }
    void aFolderReachesTheFileBrowser()
    {
        QFETCH(QByteArray, desktop);
        QFETCH(QString, name);
        qputenv("XDG_CURRENT_DESKTOP", desktop);
        QVERIFY(QDir::home().mkpath(name));
        const QString folder = QDir::home().filePath(name);
        platform::DesktopOpener opener;
        opener.openUrl(QUrl::fromLocalFile(folder));
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(m_received), timeout);
        // As a path or as an address, which is for the opening tool to choose.
        QCOMPARE(received().size(), 2);
        QCOMPARE(received().first(), u"folder"_s);
        QCOMPARE(QUrl::fromUserInput(received().last()).toLocalFile(), folder);
    }

private:
    static constexpr int timeout = 60'000; // Milliseconds, as QTest takes them.

    static QByteArray mimeType(const QByteArray &kind)
    {
        if (kind == "mail")
            return "x-scheme-handler/mailto";
        return kind == "web" ? "x-scheme-handler/http" : "inode/directory";
    }
    static void write(const QString &path, const QByteArray &text)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), text.size());
    }
    QStringList received() const
    {
        QFile file(m_received);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }

    QString m_received;
};

int main(int argc, char **argv)
{
    const test::PrivateDisplay display;
    // Opening is a service of the platform, and the offscreen one has none.
    qputenv("QT_QPA_PLATFORM", "xcb");
    const QGuiApplication application(argc, argv);
    OpeningTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "opening_test.moc"
