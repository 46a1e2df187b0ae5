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
    RemoteAccess(const RemoteAccess &) = delete;
    RemoteAccess &operator=(const RemoteAccess &) = delete;
    RemoteAccess(RemoteAccess &&) = delete;
    RemoteAccess &operator=(RemoteAccess &&) = delete;

private:
    void follow();
    void refresh();
    platform::PublishedState publish();
    void finishRefresh();

    service::QuotaService &m_quotaService;
    platform::RemoteControl &m_remoteControl;
    QString m_home;
    bool m_updatePending = false;
    quint64 m_publishedRevision = 0; ///< Of the service.
    QDeadlineTimer m_pause{0}; ///< After one that was asked for.
};

} // namespace brimwatch::app
