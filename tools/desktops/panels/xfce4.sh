#!/bin/bash
# xfce4-panel (its systray holds both SNI and XEmbed items) with xfwm4 on Xvfb.
# PANEL_SIZE=28 PANEL_POS=top|bottom SQUARE_ICONS=false COMPOSITOR=off CLOCK=on
NAME=xfce4
FACTS=(protocol=xembed form=wide restarts=yes bus=needed)
SERVICES="org.xfce.Xfconf ca.desrt.dconf"
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

configure()
{
    local conf=$DIR/home/.config/xfce4/xfconf/xfce-perchannel-xml position='p=6;x=0;y=0' clock=
    [ "${PANEL_POS:-top}" = top ] || position='p=8;x=640;y=706'
    [ "$CLOCK" = off ] || clock='<value type="int" value="4"/>'
    mkdir -p "$conf"
    cat >"$conf/xfce4-panel.xml" <<XML
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array"><value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="$position"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="${PANEL_SIZE:-28}"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/><value type="int" value="2"/><value type="int" value="3"/>$clock
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="tasklist"/>
    <property name="plugin-2" type="string" value="separator">
      <property name="expand" type="bool" value="true"/><property name="style" type="uint" value="0"/></property>
    <property name="plugin-3" type="string" value="systray">
      <property name="square-icons" type="bool" value="${SQUARE_ICONS:-false}"/></property>
    <property name="plugin-4" type="string" value="clock"/>
  </property>
</channel>
XML
}

session_start()
{
    configure
    env_set XDG_CURRENT_DESKTOP XFCE
    spawn xfwm4 xfwm4 --compositor="${COMPOSITOR:-off}"
    wait_for 40 window_manager_runs || die "xfwm4 did not start, see $DIR/log/xfwm4.log"
}

panel_start() { spawn panel xfce4-panel --disable-wm-check; }

panel_ready() { sni_host_registered && tray_manager_runs; }

# Sourced, it only tells how its panel is started.
[ "$0" != "${BASH_SOURCE[0]}" ] || panel_main "$@"
