#pragma once

class QObject;

namespace brimwatch::platform {

/// Gives memory that was freed back to the system, in a later turn of the event loop: objects that
/// are deleted then have gone too. Nothing when `context` is gone by then.
void returnFreedMemory(QObject &context);

} // namespace brimwatch::platform
