#pragma once

#include "platform/linux/tray/dbus_menu.h"

namespace brimwatch::platform {

/// The entries of the item's menu that can be chosen.
enum ItemMenuId : int { OpenId = 1, RefreshId, SettingsId, SeparatorId, QuitId };

/// What the item's menu offers, from top to bottom.
QList<DBusMenuEntry> itemMenu();

} // namespace brimwatch::platform
