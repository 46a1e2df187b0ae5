#pragma once

#include "platform/published_state.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QString>

namespace brimwatch::platform {
class RemoteControl;
}
namespace brimwatch::service {
class Diagnostics;
class QuotaService;
} // namespace brimwatch::service

namespace brimwatch::app {

/// Keeps what other programs see of us current, and refreshes for those who ask: at once, but at
/// most once a second, so that the daemon is not asked as often as somebody else likes.
class RemoteAccess final : public QObject {
    Q_OBJECT

public:
    /// All outlive it. `home` is the user's home directory, which is not published.
    RemoteAccess(service::QuotaService &quotaService, const service::Diagnostics &diagnostics,
        platform::RemoteControl &remoteControl, QString home);
    ~RemoteAccess() override;

private:
    void publish();
    void refresh();
    void finishRefresh();

    service::QuotaService &m_quotaService;
    platform::RemoteControl &m_remoteControl;
    QString m_home;
    platform::PublishedState m_published;
    QDeadlineTimer m_pause{0}; ///< Until the next refresh for another program may begin.
};

} // namespace brimwatch::app
