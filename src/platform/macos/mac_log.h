#pragma once

namespace brimwatch::platform {

/// From now on the program's messages go to the system's log, each under its own category.
/// `log stream --predicate 'subsystem == "app.brimwatch.Brimwatch"' --level info` shows them.
void logToTheSystem();

} // namespace brimwatch::platform
