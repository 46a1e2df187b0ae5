#pragma once

class QImage;

namespace brimwatch::platform {

/// The program's icon for those who take a picture and may not find the installed one, from the
/// same drawing. `side` pixels wide and high, premultiplied ARGB.
QImage applicationIcon(int side);

} // namespace brimwatch::platform
