#pragma once

#include "cli/fetch/fetch_once.h"
#include "core/result.h"

#include <QString>

namespace brimwatch::cli {

/// Loads the fetch library and fetches once. The error says why it cannot be loaded.
Result<FetchOutcome, QString> fetchOnce();

} // namespace brimwatch::cli
