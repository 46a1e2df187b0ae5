#pragma once

#include "cli/fetch/fetch_once.h"
#include "core/result.h"

#include <QString>

namespace brimwatch::cli {

/// Loads the library that fetches, and fetches once. The error says why it cannot be loaded.
Result<FetchOutcome, QString> fetchOnce();

} // namespace brimwatch::cli
