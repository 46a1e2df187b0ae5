#!/bin/bash
# Plasma 5 or 6, which of them is installed (plasmashell, kded as the watcher, kwin_x11) on Xvfb.
# PANEL_SIZE=36 PANEL_POS=3|4 (3 top, 4 bottom) PANEL_FLOATING=1|0 (as Plasma 6 and 5 have it) CLOCK=on
NAME=plasma
FACTS=(protocol=sni form=badge restarts=yes bus=needed weight=heavy)
# The daemon of Plasma 6, or of Plasma 5.
KDED=$(command -v kded6 >/dev/null && echo kded6 || echo kded5)
if [ -z "${PANEL_FLOATING:-}" ]; then
    PANEL_FLOATING=1
    [ "$KDED" != kded5 ] || PANEL_FLOATING=0
fi
SERVICES="org.kde.$KDED org.kde.ActivityManager org.kde.kglobalaccel"
READY_S=90
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

# A bare desktop with one panel that holds the tray.
write_config()
{
    local config=$DIR/home/.config order='3;4' clock='' module
    if [ "$CLOCK" = on ]; then
        order='3;4;5'
        clock=$'[Containments][2][Applets][5]\nimmutability=1\nplugin=org.kde.plasma.digitalclock\n'
    fi
    cat >"$config/plasma-org.kde.plasma.desktop-appletsrc" <<INI
[ActionPlugins][0]
RightButton;NoModifier=org.kde.contextmenu

[Containments][1]
activityId=
formfactor=0
immutability=1
lastScreen=0
location=0
plugin=org.kde.plasma.folder
wallpaperplugin=org.kde.color

[Containments][1][Wallpaper][org.kde.color][General]
Color=0,0,0

[Containments][2]
activityId=
formfactor=2
immutability=1
lastScreen=0
location=${PANEL_POS:-3}
plugin=org.kde.panel
wallpaperplugin=org.kde.image

[Containments][2][Applets][3]
immutability=1
plugin=org.kde.plasma.panelspacer

[Containments][2][Applets][4]
immutability=1
plugin=org.kde.plasma.systemtray

[Containments][2][Applets][4][Configuration]
SystrayContainmentId=8

$clock
[Containments][2][General]
AppletOrder=$order

[Containments][8]
activityId=
formfactor=2
immutability=1
lastScreen=0
location=${PANEL_POS:-3}
plugin=org.kde.plasma.private.systemtray
wallpaperplugin=org.kde.image

[Containments][8][General]
extraItems=org.kde.plasma.notifications
knownItems=org.kde.plasma.notifications,org.kde.plasma.clipboard,org.kde.plasma.volume,org.kde.plasma.battery,org.kde.plasma.devicenotifier,org.kde.plasma.keyboardindicator,org.kde.plasma.manage-inputmethod,org.kde.plasma.mediacontroller,org.kde.plasma.keyboardlayout,org.kde.plasma.networkmanagement,org.kde.plasma.printmanager,org.kde.plasma.bluetooth,org.kde.plasma.nightcolorcontrol,org.kde.plasma.vault,org.kde.kscreen
shownItems=
INI
    printf '[PlasmaViews][Panel 2]\nfloating=%s\n[PlasmaViews][Panel 2][Defaults]\nthickness=%s\n' \
        "$PANEL_FLOATING" "${PANEL_SIZE:-36}" >"$config/plasmashellrc"
    printf '[Compositing]\nEnabled=false\n[Wayland]\n' >"$config/kwinrc"
    printf '[KSplash]\nEngine=none\nTheme=None\n' >"$config/ksplashrc"
    printf '[Basic Settings]\nIndexing-Enabled=false\n' >"$config/baloofilerc"
    printf '[KDE]\nAnimationDurationFactor=0\n[General]\nfont=DejaVu Sans,10,-1,5,50,0,0,0,0,0\n' >"$config/kdeglobals"
    # Modules of kded that only cost time here.
    for module in bluedevil kscreen networkmanagement plasma-accentcolor-service appmenu gtkconfig \
        baloosearchmodule device_automounter donationmessage freespacenotifier geotimezoned inotify \
        ktimezoned touchpad smbwatcher plasmavault printmanager colord browserintegrationreminder \
        audioshortcutsservice khotkeys khotkeys5 mprisservice plasma_accentcolor_service proxyscout \
        remotenotifier solidautoeject ksysguard recentdocumentsnotifier networkstatus keyboard \
        lookandfeelautoswitcher; do
        printf '[Module-%s]\nautoload=false\n' "$module"
    done >"$config/${KDED}rc"
}

configure()
{
    write_config
    env_set XDG_CURRENT_DESKTOP KDE
    env_set KDE_FULL_SESSION true
    env_set KDE_SESSION_VERSION "${KDED#kded}"
    ENVV+=(QT_QUICK_BACKEND=software LIBGL_ALWAYS_SOFTWARE=1 KDE_NO_GLOBAL_MENU=1)
    start_system_bus
}

start_services()
{
    local activities
    spawn kded "$KDED"
    activities=$(dpkg -L kactivitymanagerd | grep '/libexec/kactivitymanagerd$')
    spawn activity "$activities"
    wait_for 20 bus_has "org.kde.$KDED" || die "$KDED did not start, see $DIR/log/kded.log"
}

session_start()
{
    configure
    spawn kwin kwin_x11
    start_services
}

panel_start() { spawn panel plasmashell --no-respawn; }

# It takes items and shows windows well before it draws itself: the middle of its row is then still wallpaper.
panel_is_drawn()
{
    local y=12
    [ "${PANEL_POS:-3}" = 4 ] && y=$((${SIZE#*x} - 13))
    [ "${PANEL_POS:-3}" -ge 5 ] ||
        [ "$(on_screen import -silent -window root -crop "400x1+$((${SIZE%x*} / 2))+$y" +repage -format '%k %[fx:mean>0.8]' info:)" = "1 1" ]
}

panel_ready()
{
    sni_host_registered && [ -n "$(inside xdotool search --onlyvisible --class plasmashell)" ] && panel_is_drawn
}

# Sourced, it only tells how its panel is started.
[ "$0" != "${BASH_SOURCE[0]}" ] || panel_main "$@"
