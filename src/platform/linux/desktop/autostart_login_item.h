#pragma once

#include "platform/login_item.h"

#include <QString>
#include <QStringList>

namespace brimwatch::platform {

class Opener;
class DesktopEntryText;

/// The login item of freedesktop desktops: an entry in the user's autostart folder (Desktop
/// Application Autostart Specification 0.5), which desktops read at login.
///
/// - No entry, or one that starts nothing, as it is no application or its program is gone: not
///   registered.
/// - An entry that the desktop in use starts: enabled, no matter who wrote it and what it starts.
/// - An entry that this desktop skips (Hidden, X-GNOME-Autostart-enabled, OnlyShowIn,
///   NotShowIn), as desktops' own settings write it: requires approval.
/// - No entry and no place to write one: not found.
class AutostartLoginItem final : public LoginItem {
public:
    struct Surroundings {
        QString configHome; ///< $XDG_CONFIG_HOME, or its default.
        QString program; ///< The absolute path of the program to start.
        QStringList currentDesktops; ///< The names in $XDG_CURRENT_DESKTOP; none: not known.
    };

    /// `opener` opens the folder where there is nothing better, and outlives the item.
    AutostartLoginItem(Surroundings surroundings, Opener &opener);

    /// $XDG_CONFIG_HOME/autostart
    QString folder() const;
    /// The entry in it, named as the application.
    QString file() const;

    Status status() const override;
    /// Writes the entry. An existing one keeps all that does not prevent our start: it loses what
    /// switches it off, and gets our program if its own is gone.
    Result<void, QString> registerItem() override;
    /// Removes the entry.
    Result<void, QString> unregisterItem() override;
    /// Starts the desktop's own panel for programs that start at login. Without one that is known
    /// and installed, opens the folder.
    void openSystemSettings() override;

private:
    bool isSwitchedOff(const DesktopEntryText &entry) const;
    bool isShownHere(const DesktopEntryText &entry) const;
    void switchOn(DesktopEntryText &entry) const;
    void showHere(DesktopEntryText &entry) const;

    Surroundings m_surroundings;
    Opener &m_opener;
};

/// The names in $XDG_CURRENT_DESKTOP.
QStringList currentDesktops();

/// The commands, best first, that open the panel of these desktops for programs that start at
/// login. Which of them are installed is for the caller to find out.
QList<QStringList> autostartPanels(const QStringList &desktops);

} // namespace brimwatch::platform
