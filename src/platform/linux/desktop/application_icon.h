#pragma once

class QImage;

namespace brimwatch::platform {

class SymbolSource;

/// The program's icon, a white sparkle on a coloured square with round corners, for those who take
/// a picture and may not find an installed one. `side` pixels wide and high, premultiplied ARGB.
QImage applicationIcon(const SymbolSource &symbols, int side);

} // namespace brimwatch::platform
