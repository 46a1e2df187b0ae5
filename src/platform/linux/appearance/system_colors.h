#pragma once

#include "model/color_token.h"
#include "platform/appearance.h"

namespace brimwatch::platform {

/// What a text or symbol is drawn on.
enum class Background { Light, Dark };

enum class Contrast { Usual, Higher };

/// What the user wants.
Contrast contrastOf(const Appearance &appearance);

/// The system colours, a fixed pair each. Text colours keep the contrast that people with weak
/// sight need (4.5 : 1 for primary texts on window backgrounds); the adaptive green is the design's
/// own pair. With higher contrast secondary texts and lines are as strong as primary texts.
Rgba systemColor(
    model::ColorToken token, Background background, Contrast contrast = Contrast::Usual);

/// Whether a colour looks more like white than like black.
bool isBright(const Rgba &color);

} // namespace brimwatch::platform
