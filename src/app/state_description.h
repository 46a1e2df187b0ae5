#pragma once

#include "platform/published_state.h"

#include <QString>

namespace brimwatch::service {
class Diagnostics;
class QuotaService;
} // namespace brimwatch::service

namespace brimwatch::app {

/// `text` with "…" where the daemon's token stood and "~" where the user's home directory did: a
/// daemon may put either into what it answers. A token of less than four characters is none worth
/// hiding.
QString withoutSecrets(QString text, const service::QuotaService &service, const QString &home);

/// What other programs may know of the service's state, within the bounds of PublishedState, with
/// all texts withoutSecrets().
platform::PublishedState describeState(const service::QuotaService &service, const QString &home);

/// The report for support as other programs may have it: withoutSecrets(), and not endless.
QString reportForOthers(const service::Diagnostics &diagnostics,
    const service::QuotaService &service, const QString &home);

} // namespace brimwatch::app
