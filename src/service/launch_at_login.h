#pragma once

#include <QObject>

namespace brimwatch::service {

/// Whether the system starts us at login.
class LaunchAtLogin : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~LaunchAtLogin() override;

    virtual bool isEnabled() const = 0;
    virtual void setEnabled(bool enabled) = 0;

Q_SIGNALS:
    /// Just before isEnabled changes.
    void objectWillChange();
    /// Just after.
    void changed();
};

} // namespace brimwatch::service
