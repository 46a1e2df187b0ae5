#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QHash>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>

class QUrl;

namespace brimwatch::platform {

/// The desktop's mail portal (org.freedesktop.portal.Email), which opens drafts in the user's mail
/// program. What it is told goes over the session bus, not over a command line, which other users
/// of the machine can read.
class MailPortal final : public QObject {
    Q_OBJECT

public:
    /// How long the portal, which the bus may have to start, has to take a draft.
    static constexpr std::chrono::milliseconds timeout = std::chrono::seconds(5);
    /// Of drafts that the portal has taken and not finished.
    static constexpr qsizetype mostPending = 8;

    explicit MailPortal(QDBusConnection bus, QObject *parent = nullptr);

    /// Opens a draft of a mailto address with a subject and a body. `otherwise` is called when the
    /// desktop has no such portal, or when the portal cannot; not when the user declines.
    void compose(const QUrl &mail, const std::function<void()> &otherwise);

private Q_SLOTS:
    void finish(const QDBusMessage &response);

private:
    void listen(const QString &request);
    void forget(const QString &request);

    QDBusConnection m_bus;
    QHash<QString, std::function<void()>> m_pending; ///< By the path of the portal's request.
};

} // namespace brimwatch::platform
