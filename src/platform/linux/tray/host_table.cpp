#include "platform/linux/tray/host_table.h"

#include <algorithm>
#include <array>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

struct KnownHost {
    QLatin1StringView name;
    QLatin1StringView program; // The end of its path, whole components.
    PresentationKind presentation = PresentationKind::None;
};

// Seen with the versions of Debian 12. Where a panel offers both protocols, its tray shows a wide
// window in full, while it squeezes a wide pixmap into a square.
constexpr std::array knownHosts{
    KnownHost{.name = "xfce4-panel"_L1,
        .program = "xfce4/panel/wrapper-2.0"_L1,
        .presentation = PresentationKind::XembedWide},
    KnownHost{.name = "mate-panel"_L1,
        .program = "notification-area-applet"_L1,
        .presentation = PresentationKind::XembedWide},
    // With the AppIndicator extension, in the Wayland session too. On a StatusNotifierItem a single
    // click would only open the menu.
    KnownHost{.name = "gnome-shell"_L1,
        .program = "gnome-shell"_L1,
        .presentation = PresentationKind::XembedWide},
    KnownHost{
        .name = "trayer"_L1, .program = "trayer"_L1, .presentation = PresentationKind::XembedWide},
    KnownHost{
        .name = "waybar"_L1, .program = "waybar"_L1, .presentation = PresentationKind::SniWide},
    // The watcher is a module of the session's daemon, whichever of the two it is.
    KnownHost{
        .name = "plasma"_L1, .program = "kded5"_L1, .presentation = PresentationKind::SniBadge},
    KnownHost{
        .name = "plasma"_L1, .program = "kded6"_L1, .presentation = PresentationKind::SniBadge},
    KnownHost{.name = "plasma"_L1,
        .program = "plasmashell"_L1,
        .presentation = PresentationKind::SniBadge},
    KnownHost{.name = "lxqt-panel"_L1,
        .program = "lxqt-panel"_L1,
        .presentation = PresentationKind::SniBadge},
    KnownHost{
        .name = "swaybar"_L1, .program = "swaybar"_L1, .presentation = PresentationKind::SniBadge},
    KnownHost{
        .name = "i3bar"_L1, .program = "i3bar"_L1, .presentation = PresentationKind::XembedBadge},
    KnownHost{.name = "polybar"_L1,
        .program = "polybar"_L1,
        .presentation = PresentationKind::XembedBadge},
};

const auto unknownHost = "unknown"_L1;

bool endsWithComponents(QStringView path, QLatin1StringView end)
{
    if (!path.endsWith(end))
        return false;
    return path.size() == end.size() || path[path.size() - end.size() - 1] == u'/';
}

const KnownHost *find(const QString &executable)
{
    QStringView path = executable;
    // What the kernel adds when the file was replaced under a running program, as upgrades do.
    if (constexpr auto gone = " (deleted)"_L1; path.endsWith(gone))
        path.chop(gone.size());
    const auto *const found = std::ranges::find_if(knownHosts,
        [path](const KnownHost &host) { return endsWithComponents(path, host.program); });
    return found == knownHosts.end() ? nullptr : &*found;
}

HostChoice chooseXembed(const KnownHost *manager)
{
    if (manager == nullptr)
        return {.host = unknownHost, .presentation = PresentationKind::XembedWide};
    // Embedding is all that it offers, even if another presentation suits it better.
    return {.host = manager->name,
        .presentation
        = isXembed(manager->presentation) ? manager->presentation : PresentationKind::XembedBadge};
}

} // namespace

HostChoice chooseHost(const TrayFacts &facts)
{
    const KnownHost *manager = facts.manager ? find(facts.manager->executable) : nullptr;
    if (manager != nullptr && manager->presentation == PresentationKind::XembedWide)
        return chooseXembed(manager); // No answer from the bus could change that.

    if (!facts.watcherKnown) {
        HostChoice choice = facts.manager ? chooseXembed(manager) : HostChoice{};
        choice.settled = false;
        return choice;
    }
    if (!facts.watcher)
        return facts.manager ? chooseXembed(manager) : HostChoice{};

    const KnownHost *watcher = find(facts.watcher->executable);
    const bool wantsXembed = watcher != nullptr && isXembed(watcher->presentation);
    if (wantsXembed && facts.manager)
        return {.host = watcher->name, .presentation = watcher->presentation};
    // A watcher without a host shows nothing: some run in sessions whose bar only embeds.
    if (facts.manager && facts.watcher->hasHost == false)
        return chooseXembed(manager);
    return {.host = watcher == nullptr ? unknownHost : watcher->name,
        .presentation
        = watcher == nullptr || wantsXembed ? PresentationKind::SniPortable : watcher->presentation,
        .settled = !wantsXembed && (!facts.manager || facts.watcher->hasHost.has_value())};
}

} // namespace brimwatch::platform
