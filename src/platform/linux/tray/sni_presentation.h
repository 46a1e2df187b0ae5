#pragma once

#include "platform/linux/tray/presentation.h"
#include "platform/linux/tray/sni_types.h"
#include "platform/linux/tray/steady_width.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QImage>
#include <QString>
#include <QTimer>

namespace brimwatch::platform {

class DBusMenu;
class LabelPainter;

/// How a StatusNotifierItem shows the label.
enum class SniForm {
    Wide, ///< The whole label in one picture, for hosts that do not squeeze it into a square.
    Badge, ///< Its badge.
    Portable, ///< Its badge, and a menu for hosts that open nothing else on some clicks.
};

/// The item as a StatusNotifierItem: pictures, and the label as text in the title, in the tooltip
/// and, for hosts that know it, beside the icon (Ayatana's XAyatanaLabel).
///
/// Pictures have a dark rounded background of their own, as the protocol does not tell the panel's.
/// IconName stays empty: hosts prefer it to the pictures, and it would hide what they say. Texts
/// are safe for hosts that take them for markup.
///
/// Changes are signalled once they differ from what hosts may have read, at most once a second;
/// between, the properties stay as signalled, and the last state always arrives.
///
/// clicked() carries a pointer only when the host's arguments can be global coordinates: some hosts
/// send places within the item or a fixed one near 0,0 (waybar 0.9, MATE 1.26).
///
/// One object on a connection at a time: a second one, and one whose watcher is not there, does not
/// answer or goes away, reports lost(), once, and does nothing from then on. It never waits for the
/// bus. Slots on lost() use deleteLater().
class SniPresentation : public Presentation {
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
    /// The name that watchers know the item by is org.kde.StatusNotifierItem-PID-N, another N each
    /// time.
    SniPresentation(
        SniForm form, const QDBusConnection &bus, const LabelPainter &painter, QObject *parent);
    ~SniPresentation() override;
    SniPresentation(const SniPresentation &) = delete;
    SniPresentation &operator=(const SniPresentation &) = delete;
    SniPresentation(SniPresentation &&) = delete;
    SniPresentation &operator=(SniPresentation &&) = delete;

    void present(const PresentedItem &item) override;
    /// Absent: the protocol has no word for it.
    std::optional<QRect> place() const override { return std::nullopt; }

Q_SIGNALS:
    // Those of the protocol, named as it names them: the adaptor passes them on.
    void NewTitle();
    void NewIcon();
    void NewToolTip();
    void XAyatanaNewLabel(const QString &label, const QString &guide);

private Q_SLOTS:
    // The methods of the protocol, named as it names them: the adaptor calls them by name.
    void Activate(int x, int y);
    void SecondaryActivate(int x, int y);
    void ContextMenu(int x, int y);
    void Scroll(int delta, const QString &orientation);
    void ProvideXdgActivationToken(const QString &token);
    void XAyatanaSecondaryActivate(uint timestamp);

    void lose();

private:
    struct Texts {
        QString title;
        QString toolTip;
        QString label;
        QString labelGuide;
    };

    QString category() const;
    QString id() const;
    QString status() const;
    int windowId() const;
    QDBusObjectPath menu() const;
    bool itemIsMenu() const;
    QString noName() const;
    SniPixmaps noPixmaps() const;
    QString title();
    SniPixmaps iconPixmap();
    SniToolTip toolTip();
    QString label();
    QString labelGuide();

    static Texts textsOf(const PresentedItem &item);
    SniPixmaps draw(const model::LabelComposition &label);
    QImage drawWide(const model::LabelComposition &label, int height);
    QImage drawSquare(const model::LabelComposition &label, int side) const;
    void announce();
    void requestName();
    void registerItem(const QString &name);
    void chooseFromMenu(int id);

    SniForm m_form;
    QDBusConnection m_bus;
    const LabelPainter &m_painter;
    SteadyWidth m_steadyWidth;
    DBusMenu *m_menu = nullptr;
    QDBusServiceWatcher m_watcher;
    QString m_name;
    QTimer m_pause; ///< Runs while hosts are to be left in peace.

    PresentedItem m_wanted;
    model::LabelComposition m_shownLabel;
    Texts m_texts;
    SniPixmaps m_pixmaps; ///< Of the shown label; empty until someone asks for them.
    bool m_wasRead = false; ///< Whether someone may hold values that a change makes old.
    bool m_lost = false;
};

} // namespace brimwatch::platform
