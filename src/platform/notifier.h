#pragma once

#include <QObject>
#include <QString>

namespace brimwatch::platform {

/// Something to tell the user, with the desktop's default notification sound.
struct Notification {
    QString identifier; ///< What is posted under it replaces what was posted under it before.
    QString title; ///< Plain text, as the body is.
    QString body;

    bool operator==(const Notification &) const = default;
};

/// Puts notifications before the user in the desktop's own way.
class Notifier : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~Notifier() override;

    /// Asks the desktop whether we may alert the user, with sound. The answer is reported to
    /// nobody: posting goes on regardless, and the desktop drops what the user has not allowed.
    virtual void requestAuthorization() = 0;
    /// Delivers at once and waits for nothing. A failure is not reported.
    virtual void post(const Notification &notification) = 0;

Q_SIGNALS:
    /// The user chose the notification posted under that identifier.
    void activated(const QString &identifier);
};

} // namespace brimwatch::platform
