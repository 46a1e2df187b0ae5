#pragma once

#include "platform/published_state.h"

#include <QVariantMap>

namespace brimwatch::platform {

/// The state as the properties of app.brimwatch.Brimwatch1, all of them but Version.
QVariantMap toBusProperties(const PublishedState &state);

/// The state that properties from the bus tell, whoever sent them: what is missing or of another
/// type counts as nothing, texts become one line each, and what is beyond the bounds is left out.
PublishedState fromBusProperties(const QVariantMap &properties);

} // namespace brimwatch::platform
