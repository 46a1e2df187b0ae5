#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace brimwatch::platform {

/// The ways to be shown in a panel.
enum class PresentationKind {
    XembedWide, ///< The whole label in an embedded window.
    XembedBadge, ///< Two numbers in an embedded window as wide as high.
    SniWide, ///< The whole label as the pixmap of a StatusNotifierItem.
    SniBadge, ///< Two numbers as its pixmap.
    SniPortable, ///< What any StatusNotifierItem host understands: squares, texts and a menu.
    None, ///< No panel shows items.
};

/// The owner of org.kde.StatusNotifierWatcher.
struct WatcherFacts {
    QString executable; ///< The path of its program, as far as known.
    /// Whether a host shows its items. Absent while it has not answered.
    std::optional<bool> hasHost;

    bool operator==(const WatcherFacts &) const = default;
};

/// The owner of the system tray selection of the X screen.
struct TrayManagerFacts {
    QString executable; ///< The path of its program, or the name that its window has.

    bool operator==(const TrayManagerFacts &) const = default;
};

/// Who could show the item.
struct TrayFacts {
    bool watcherKnown
        = false; ///< Whether the bus has said who the watcher is, or that there is none.
    std::optional<WatcherFacts> watcher;
    std::optional<TrayManagerFacts> manager;
};

/// Which host shows the item, and how.
struct HostChoice {
    QString host; ///< For people: "xfce4-panel", "unknown".
    PresentationKind presentation = PresentationKind::None; ///< The one that suits the host best.
    /// False while something missing may still come that would change the choice: an answer, or the
    /// other half of a panel that brings a watcher and a tray manager one after the other.
    bool settled = true;

    bool operator==(const HostChoice &) const = default;
};

/// One presentation, never two: panels with both protocols would show the item twice. What is known
/// of a host wins over what is not, and the wide label over a square.
HostChoice chooseHost(const TrayFacts &facts);

constexpr bool isXembed(PresentationKind kind)
{
    return kind == PresentationKind::XembedWide || kind == PresentationKind::XembedBadge;
}

} // namespace brimwatch::platform
