#pragma once

#include "platform/published_state.h"

#include <QString>

namespace brimwatch::cli {

/// What one fetch found out.
struct FetchOutcome {
    platform::PublishedState state; ///< Connected or offline.
    QString report; ///< For support, with the daemon's token cut.
};

} // namespace brimwatch::cli

/// The only function that the fetch library exports: asks the daemons once, with the user's
/// settings, and returns when that is done. It needs an application object, and runs its event loop
/// meanwhile.
extern "C" void brimwatch_fetch_once(brimwatch::cli::FetchOutcome &outcome);
