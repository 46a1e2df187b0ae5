#include "platform/linux/tray/item_menu.h"

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

QList<DBusMenuEntry> itemMenu()
{
    return {{.id = OpenId, .label = u"Open"_s}, {.id = RefreshId, .label = u"Refresh"_s},
        {.id = SettingsId, .label = u"Settings"_s},
        {.id = SeparatorId, .label = {}, .separator = true}, {.id = QuitId, .label = u"Quit"_s}};
}

} // namespace brimwatch::platform
