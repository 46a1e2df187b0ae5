#pragma once

#include <QString>

namespace brimwatch::app {

/// What the event loop ends with when the program is to be started anew in its own place.
inline constexpr int replacementStatus = 1000;

/// Whether another file has taken the place of the one that this process was started from, as
/// upgrades do. What that brought along (the library of the views) is not made for this process.
/// `program` is the path of the program. False as well when there is none at it any more.
bool programWasReplaced(const QString &program);

/// Goes on as the program at that path, which opens its popover. Everything of this one should be
/// gone by then. Returns only when it cannot.
void continueAs(const QString &program);

/// Whether this process goes on for another that was to open its popover. True once.
bool takesOverOpening();

} // namespace brimwatch::app
