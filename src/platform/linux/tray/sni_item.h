#pragma once

#include "platform/linux/tray/sni_types.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>

namespace brimwatch::platform {

/// The properties, methods and signals of a StatusNotifierItem (org.kde.StatusNotifierItem, with
/// Ayatana's text beside the icon), at /StatusNotifierItem from its making to its end. Another
/// object that is there already stays.
///
/// Changes are signalled once a host has read anything of the item, those of the picture once it
/// has been drawn. It is drawn when a host first asks for it.
class SniItem final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString Category READ category CONSTANT FINAL)
    Q_PROPERTY(QString Id READ id CONSTANT FINAL)
    Q_PROPERTY(QString Title READ title FINAL)
    Q_PROPERTY(QString Status READ status CONSTANT FINAL)
    Q_PROPERTY(int WindowId READ windowId CONSTANT FINAL)
    Q_PROPERTY(QString IconThemePath READ noName CONSTANT FINAL)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT FINAL)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT FINAL)
    Q_PROPERTY(QString IconName READ noName CONSTANT FINAL)
    Q_PROPERTY(brimwatch::platform::SniPixmaps IconPixmap READ iconPixmap FINAL)
    Q_PROPERTY(QString OverlayIconName READ noName CONSTANT FINAL)
    Q_PROPERTY(brimwatch::platform::SniPixmaps OverlayIconPixmap READ noPixmaps CONSTANT FINAL)
    Q_PROPERTY(QString AttentionIconName READ noName CONSTANT FINAL)
    Q_PROPERTY(brimwatch::platform::SniPixmaps AttentionIconPixmap READ noPixmaps CONSTANT FINAL)
    Q_PROPERTY(QString AttentionMovieName READ noName CONSTANT FINAL)
    Q_PROPERTY(brimwatch::platform::SniToolTip ToolTip READ toolTip FINAL)
    Q_PROPERTY(QString XAyatanaLabel READ label FINAL)
    Q_PROPERTY(QString XAyatanaLabelGuide READ labelGuide FINAL)

public:
    /// Whether hosts are offered a menu, at menuPath(). Deliberate: without one the property is
    /// missing. Hosts take a right click for a menu where there is one, and some take any path.
    enum class Menu { No, Yes };

    struct Texts {
        QString title;
        QString toolTip;
        QString label;
        QString labelGuide; ///< The widest that the label may become.
    };

    using Draw = std::function<SniPixmaps()>;

    SniItem(QDBusConnection bus, Menu menu, Texts texts, Draw draw, QObject *parent = nullptr);
    ~SniItem() override;

    static QString menuPath();

    /// Whether hosts find this object at its path.
    bool isOnBus() const;
    /// Whether a change was signalled. The pictures count as changed where `iconChanged` says so
    /// and a new drawing differs.
    bool update(Texts texts, bool iconChanged);

Q_SIGNALS:
    // Those of the protocol, named as it names them: the adaptor passes them on.
    void NewTitle();
    void NewIcon();
    void NewToolTip();
    void XAyatanaNewLabel(const QString &label, const QString &guide);

    /// A click, with the coordinates that the host sent. Comes from the event loop: the host waits
    /// for the answer to its call, and what follows may take its time.
    void activated(QPoint place);

private Q_SLOTS:
    // The methods of the protocol, named as it names them: the adaptor calls them by name.
    void Activate(int x, int y);
    void SecondaryActivate(int /*x*/, int /*y*/) { }
    // Hosts call it for a right click where there is no menu of ours.
    void ContextMenu(int x, int y) { Activate(x, y); }
    void Scroll(int /*delta*/, const QString & /*orientation*/) { }
    void ProvideXdgActivationToken(const QString & /*token*/) { }
    void XAyatanaSecondaryActivate(uint /*timestamp*/) { }

private:
    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("brimwatch"); }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QDBusObjectPath menu() const { return QDBusObjectPath(menuPath()); }
    bool itemIsMenu() const { return false; }
    // Not null: QtDBus would not send it.
    QString noName() const { return QStringLiteral(""); }
    SniPixmaps noPixmaps() const { return {}; }
    QString title() { return read(m_texts.title); }
    SniPixmaps iconPixmap();
    SniToolTip toolTip();
    QString label() { return read(m_texts.label); }
    QString labelGuide() { return read(m_texts.labelGuide); }

    QString read(const QString &text);

    QDBusConnection m_bus;
    Texts m_texts;
    Draw m_draw;
    SniPixmaps m_pixmaps; ///< Empty until a host asks for them.
    bool m_wasRead = false; ///< Whether a host may hold values that a change makes old.
};

} // namespace brimwatch::platform
