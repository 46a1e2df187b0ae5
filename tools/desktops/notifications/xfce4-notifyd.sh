#!/bin/bash
# xfce4-notifyd with openbox on Xvfb. What it shows stays until somebody closes it.
NAME=xfce4-notifyd
# Up to 0.7 the default action is a button at the bottom, and a click elsewhere closes.
FACTS=(click_x='x + width - 57' click_y='y + height - 31' click_button=1)
PURPOSE=notifications-xfce4-notifyd
SERVICES="org.xfce.Xfconf"
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

session_start()
{
    local conf=$DIR/home/.config/xfce4/xfconf/xfce-perchannel-xml
    mkdir -p "$conf"
    cat >"$conf/xfce4-notifyd.xml" <<XML
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-notifyd" version="1.0">
  <property name="expire-timeout" type="int" value="-1"/>
  <property name="do-fadeout" type="bool" value="false"/>
  <property name="do-slideout" type="bool" value="false"/>
  <property name="initial-opacity" type="double" value="1"/>
  <property name="notification-log" type="bool" value="false"/>
</channel>
XML
    env_set XDG_CURRENT_DESKTOP XFCE
    start_openbox
}

panel_start()
{
    local program
    for program in /usr/lib/*/xfce4/notifyd/xfce4-notifyd; do
        spawn panel "$program"
        return
    done
}

panel_ready() { notifications_served; }

panel_main "$@"
