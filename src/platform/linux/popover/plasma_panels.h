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

/// The margins of a layer that keep it off Plasma 6's panels where these float: a floating panel
/// stands a little away from its edge (seen with 6.3), and the room that it reserves is as if it
/// did not. None where no panel floats. `plasmashellrc` is the file in which Plasma keeps its
/// panels.
QMargins gapOfFloatingPanels(const QByteArray &plasmashellrc);

/// The same, with the user's own file.
QMargins gapOfFloatingPanels();

} // namespace brimwatch::platform
