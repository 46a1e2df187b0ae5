#pragma once

#include "platform/popover_content.h"

#include <QString>

#include <cstdint>

namespace brimwatch::platform {

/// What the event loop returns when the program is to be started anew in its own place. No exit
/// status of the process.
inline constexpr int replacementStatus = 1000;

/// Whether another file has taken the place of the one that this process was started from, as it
/// does in an upgrade. The upgraded library of the views is not made for this process. `program` is
/// the path of the program. False as well where no program is left at that path.
bool programWasReplaced(const QString &program);

/// The factory, but once the program has been replaced it makes nothing, and ends the event loop
/// with replacementStatus.
PopoverContentFactory unlessReplaced(PopoverContentFactory factory);

/// The same for a program that is to be started anew without opening its popover.
inline constexpr int restartStatus = 1001;

/// Whether the program that runs in place of this one opens its popover.
enum class Opening : std::uint8_t { No, Yes };

/// Runs the program at that path in place of this one. To be called when the objects of this one
/// are gone. Returns only when the program cannot be run.
void continueAs(const QString &program, Opening opening);

/// Whether this process runs in place of one that was to open its popover. True once.
bool takesOverOpening();

} // namespace brimwatch::platform
