#pragma once

#include "platform/appearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFileSystemWatcher>
#include <QHash>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

namespace brimwatch::platform {

class XSettings;

/// Who scales texts to the size that the desktop asks for.
enum class TextScaling {
    Brimwatch,
    Qt, ///< As on X11, where that size is part of the resolution by which Qt scales everything.
};

/// How the desktop looks, from what it announces: the settings portal first, then KDE's own file,
/// then XSETTINGS. A desktop that says nothing is light.
class DesktopAppearance final : public Appearance {
    Q_OBJECT

public:
    /// `xSettings` may be null where there is no X server, and outlives this. `configHome` is the
    /// folder of kdeglobals.
    DesktopAppearance(QDBusConnection bus, const XSettings *xSettings, const QString &configHome,
        TextScaling textScaling = TextScaling::Brimwatch, QObject *parent = nullptr);

    bool isDark() const override { return m_look.dark; }
    Rgba color(model::ColorToken token) const override;
    QString fontFamily() const override { return m_look.fontFamily; }
    double textScale() const override { return m_look.textScale; }
    bool reducesMotion() const override { return m_look.reducesMotion; }
    bool raisesContrast() const override { return m_look.higherContrast; }

private:
    struct Look {
        bool dark = false;
        std::optional<Rgba> accent;
        QString fontFamily;
        double textScale = 1;
        bool reducesMotion = false;
        bool higherContrast = false;

        bool operator==(const Look &) const = default;
    };

    void askPortal();
    void readKde();
    void update();
    Look look() const;
    bool saysNoMotion() const;
    bool saysHigherContrast() const;

    Q_SLOT void portalSettingChanged(const QDBusMessage &message);

    QDBusConnection m_bus;
    const XSettings *m_xSettings;
    QString m_kdeFile;
    TextScaling m_textScaling;
    std::unique_ptr<QFileSystemWatcher> m_kdeWatcher;
    QHash<QString, QVariant> m_portal; ///< "namespace key" to value.
    QHash<QString, QString> m_kde; ///< "Group/Key" to value.
    Look m_look;
};

/// The family in a font description such as "Noto Sans Bold 10" (XSETTINGS, GNOME) or "Noto
/// Sans,10,-1,5,50,0,0,0,0,0" (KDE).
QString familyOfFontDescription(const QString &description);

} // namespace brimwatch::platform
