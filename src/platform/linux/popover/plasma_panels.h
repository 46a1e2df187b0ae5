#pragma once

#include <QByteArray>
#include <QMargins>

#include <cstdint>

namespace brimwatch::platform {

/// How the session's panels stand on the screen.
enum class PlasmaVersion : std::uint8_t {
    None, ///< Not Plasma's: whatever layers there are.
    Plasma5, ///< Not layers: the compositor keeps no other layer off them.
    Plasma6, ///< Layers: the compositor keeps others off them, but not off their gap at the edge.
};

/// By KDE_SESSION_VERSION, which Plasma sets for all that runs in it.
PlasmaVersion plasmaVersion();

/// The margins that keep a layer clear of Plasma 6's floating panels; none where no panel floats.
/// A floating panel is a little away from the screen's edge (seen with 6.3), but the zone that it
/// reserves does not include that gap. `plasmashellrc` is the content of Plasma's file of panels.
QMargins gapOfFloatingPanels(const QByteArray &plasmashellrc);

/// The same, with the user's own file.
QMargins gapOfFloatingPanels();

} // namespace brimwatch::platform
