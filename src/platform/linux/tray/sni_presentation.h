#pragma once

#include "platform/linux/appearance/system_colors.h"
#include "platform/linux/tray/presentation.h"
#include "platform/linux/tray/sni_item.h"
#include "platform/linux/tray/steady_width.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QImage>
#include <QString>
#include <QTimer>

namespace brimwatch::platform {

class Appearance;
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
/// Pictures have a dark rounded background of their own, as the protocol does not say what the
/// panel's is, the desktop's interface font, and more contrast where the user wants it. IconName
/// stays empty: hosts prefer it to the pictures, and it would hide what they show. Texts are safe
/// for hosts that take them for markup.
///
/// Changes are signalled at most once a second; between, the properties stay as signalled, and the
/// last state always arrives.
///
/// clicked() carries a pointer only when the host's arguments can be global coordinates: some hosts
/// send places within the item or a fixed one near 0,0 (waybar 0.9, MATE 1.26).
///
/// One object on a connection at a time: a second one, and one whose watcher is not there, does not
/// answer or goes away, reports lost(), once, and does nothing from then on. It never waits for the
/// bus. Slots on lost() use deleteLater().
class SniPresentation final : public Presentation {
    Q_OBJECT

public:
    /// The name that watchers know the item by is org.kde.StatusNotifierItem-PID-N, another N each
    /// time.
    SniPresentation(SniForm form, const QDBusConnection &bus, const LabelPainter &painter,
        Appearance &appearance, QObject *parent);
    ~SniPresentation() override;

    void present(const PresentedItem &item) override;
    /// Absent: the protocol has no word for it.
    std::optional<QRect> place() const override { return std::nullopt; }

private Q_SLOTS:
    void lose();

private:
    static SniItem::Texts textsOf(const PresentedItem &item);
    SniPixmaps draw();
    QImage drawWide(int height);
    QImage drawSquare(int side) const;
    void followAppearance();
    void announceSoon();
    void announce();
    void addMenu();
    void requestName();
    void registerItem(const QString &name);
    void chooseFromMenu(int id);

    SniForm m_form;
    QDBusConnection m_bus;
    const LabelPainter &m_painter;
    Appearance &m_appearance;
    SteadyWidth m_steadyWidth;
    PresentedItem m_wanted;
    model::LabelComposition m_shownLabel;
    QString m_shownFont; ///< Its family.
    Contrast m_shownContrast;
    SniItem m_item;
    QDBusServiceWatcher m_watcher;
    QString m_name;
    QTimer m_pause; ///< Runs while changes have to wait.
    bool m_lost = false;
};

} // namespace brimwatch::platform
