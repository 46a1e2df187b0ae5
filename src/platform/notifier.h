#pragma once

#include <QObject>
#include <QString>

namespace brimwatch::platform {

/// A notification with the desktop's default sound.
struct Notification {
    QString identifier; ///< A later notification with the same one replaces this one.
    QString title; ///< Plain text, as the body is.
    QString body;

    bool operator==(const Notification &) const = default;
};

/// Posts notifications on the desktop.
class Notifier : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~Notifier() override;

    /// Asks the desktop whether we may alert the user, with sound. The answer is not reported:
    /// notifications are posted in any case, and the desktop drops those that are not allowed.
    virtual void requestAuthorization() = 0;
    /// Posts the notification without waiting. A failure is not reported.
    virtual void post(const Notification &notification) = 0;

Q_SIGNALS:
    /// The user chose the notification posted under that identifier.
    void activated(const QString &identifier);
};

} // namespace brimwatch::platform
