#pragma once

#include <string>

namespace brimwatch::platform {

/// Replaces all that is on the general pasteboard with plain text, UTF-8.
void setPasteboardText(const std::string &text);

} // namespace brimwatch::platform
