#include "platform/macos/mac_notifier.h"

namespace brimwatch::platform {

MacNotifier::MacNotifier(QObject *parent)
    : Notifier(parent)
    , m_native([this](const std::string &identifier) {
        Q_EMIT activated(QString::fromStdString(identifier));
    })
{
}

void MacNotifier::requestAuthorization()
{
    m_native.requestAuthorization();
}

void MacNotifier::post(const Notification &notification)
{
    m_native.post(notification.identifier.toStdString(), notification.title.toStdString(),
        notification.body.toStdString());
}

} // namespace brimwatch::platform
