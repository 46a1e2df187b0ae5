#pragma once

#include "model/color_token.h"
#include "platform/appearance.h"

namespace brimwatch::platform {

/// What a text or symbol stands on.
enum class Ground { Light, Dark };

enum class Contrast { Usual, Higher };

/// The system colours, a fixed pair each. Text colours hold to the contrast that people with weak
/// sight need (4.5 : 1 for the first rank on window grounds); the adaptive green is the design's
/// own pair. With higher contrast secondary texts and lines are as strong as primary texts.
Rgba systemColor(model::ColorToken token, Ground ground, Contrast contrast = Contrast::Usual);

} // namespace brimwatch::platform
