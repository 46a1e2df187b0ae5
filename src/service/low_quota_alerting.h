#pragma once

namespace brimwatch::model {
struct QuotaSummary;
}

namespace brimwatch::service {

/// Tells the user of quota that falls low.
class LowQuotaAlerting {
public:
    LowQuotaAlerting() = default;
    virtual ~LowQuotaAlerting() = default;
    LowQuotaAlerting(const LowQuotaAlerting &) = delete;
    LowQuotaAlerting &operator=(const LowQuotaAlerting &) = delete;
    LowQuotaAlerting(LowQuotaAlerting &&) = delete;
    LowQuotaAlerting &operator=(LowQuotaAlerting &&) = delete;

    /// Asks the desktop once whether we may notify; the answer is not waited for.
    virtual void requestNotificationPermission() = 0;
    virtual void checkLowQuotaNotifications(const model::QuotaSummary &summary) = 0;
};

} // namespace brimwatch::service
