#pragma once

#include "platform/macos/native_notifier.h"
#include "platform/notifier.h"

namespace brimwatch::platform {

/// The system's notification centre.
class MacNotifier final : public Notifier {
    Q_OBJECT

public:
    explicit MacNotifier(QObject *parent = nullptr);

    void requestAuthorization() override;
    void post(const Notification &notification) override;

private:
    NativeNotifier m_native;
};

} // namespace brimwatch::platform
