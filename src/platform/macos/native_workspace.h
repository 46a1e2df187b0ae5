#pragma once

#include <string>
#include <vector>

namespace brimwatch::platform {

/// Opens the first of these files, or application bundles, that exists. False when none does.
/// Paths are absolute, UTF-8. Opening may fail, and fails silently.
bool openFirstExisting(const std::vector<std::string> &paths);

/// Opens an address, percent-encoded as it goes over the wire, in the program that the user has for
/// it. One that is no address opens nothing.
void openAddress(const std::string &address);

} // namespace brimwatch::platform
