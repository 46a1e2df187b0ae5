#pragma once

#include "platform/published_state.h"

#include <QVariantMap>

namespace brimwatch::platform {

/// The state as the properties of app.brimwatch.Brimwatch1, all of them but Version and Display.
QVariantMap toBusProperties(const PublishedState &state);

/// The state from properties on the bus, which any program may have sent: what is missing or of
/// another type counts as nothing, texts become one line each, and what exceeds the bounds is left
/// out.
PublishedState fromBusProperties(const QVariantMap &properties);

} // namespace brimwatch::platform
