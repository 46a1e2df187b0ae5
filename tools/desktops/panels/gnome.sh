#!/bin/bash
# GNOME Shell with its AppIndicator extension, an X11 session on Xvfb.
# The shell is window manager and panel in one: it cannot be ended alone. EXTENSION=1|0
NAME=gnome
# The extension on GNOME 43 makes room for the whole label; that on GNOME 48 puts each item into a square.
case $(gnome-shell --version 2>/dev/null) in
    *' 43.'*) FORM=wide ;;
    *) FORM=badge ;;
esac
# It shows a copy of the item.
FACTS=(protocol=xembed "form=$FORM" restarts=no bus=needed item=copy weight=heavy)
SERVICES="org.gnome.Shell.Notifications org.gnome.ScreenSaver org.gnome.Shell.HotplugSniffer"
READY_S=60
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

configure()
{
    local settings=$DIR/home/.config/glib-2.0/settings extension="'ubuntu-appindicators@ubuntu.com'"
    [ "${EXTENSION:-1}" = 1 ] || extension=
    mkdir -p "$settings"
    cat >"$settings/keyfile" <<INI
[org/gnome/shell]
enabled-extensions=[$extension]
disable-user-extensions=false
welcome-dialog-last-shown-version='99'
[org/gnome/desktop/interface]
enable-animations=false
[org/gnome/desktop/background]
picture-options='none'
picture-uri=''
primary-color='#000000'
[org/gnome/mutter]
dynamic-workspaces=false
INI
    start_system_bus
    ENVV+=(GSETTINGS_BACKEND=keyfile LIBGL_ALWAYS_SOFTWARE=1 GNOME_SHELL_SESSION_MODE=user)
    env_set XDG_CURRENT_DESKTOP GNOME
}

session_start() { configure; }

panel_start() { spawn panel gnome-shell --x11 --sm-disable; }

# The shell starts in its overview, which hides the desktop and takes clicks.
leave_overview()
{
    inside dbus-send --session --print-reply --dest=org.gnome.Shell /org/gnome/Shell \
        org.freedesktop.DBus.Properties.Set string:org.gnome.Shell string:OverviewActive \
        variant:boolean:false >/dev/null 2>&1
    inside dbus-send --session --print-reply=literal --dest=org.gnome.Shell /org/gnome/Shell \
        org.freedesktop.DBus.Properties.Get string:org.gnome.Shell string:OverviewActive 2>/dev/null |
        grep -q false
}

panel_ready()
{
    bus_has org.gnome.Shell && grep -qs 'GNOME Shell started' "$DIR/log/panel.log" && leave_overview || return 1
    [ "${EXTENSION:-1}" = 0 ] || { sni_host_registered && tray_manager_runs; }
}

# Sourced, it only tells how its panel is started.
[ "$0" != "${BASH_SOURCE[0]}" ] || panel_main "$@"
