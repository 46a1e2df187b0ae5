#include "platform/linux/desktop/mail_portal.h"

#include "platform/linux/bus/bus_calls.h"

#include <QDBusObjectPath>
#include <QLoggingCategory>
#include <QUrl>
#include <QUrlQuery>
#include <QVariantMap>

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(mailLog, "brimwatch.desktop", QtInfoMsg)

const auto portalService = u"org.freedesktop.portal.Desktop"_s;
const auto portalPath = u"/org/freedesktop/portal/desktop"_s;
const auto emailInterface = u"org.freedesktop.portal.Email"_s;
const auto requestInterface = u"org.freedesktop.portal.Request"_s;
const auto responseSignal = u"Response"_s;

// What a Response says first: that it is done, that the user declined, or this.
constexpr uint failedResponse = 2;

} // namespace

MailPortal::MailPortal(QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
}

void MailPortal::compose(const QUrl &mail, const std::function<void()> &otherwise)
{
    if (!m_bus.isConnected() || m_pending.size() >= mostPending) {
        otherwise();
        return;
    }
    static int number = 0;
    const QString token = u"brimwatch%1"_s.arg(++number);
    // The path that the portal gives to the request of a caller (since its version 0.9). It is
    // listened to before the call: the response may come before the answer.
    QString sender = m_bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    const QString request = portalPath + "/request/"_L1 + sender + u'/' + token;
    m_pending.insert(request, otherwise);
    listen(request);

    const QUrlQuery query(mail);
    auto call = QDBusMessage::createMethodCall(
        portalService, portalPath, emailInterface, u"ComposeEmail"_s);
    call << QString()
         << QVariantMap{{u"handle_token"_s, token}, {u"address"_s, mail.path(QUrl::FullyDecoded)},
                {u"subject"_s, query.queryItemValue(u"subject"_s, QUrl::FullyDecoded)},
                {u"body"_s, query.queryItemValue(u"body"_s, QUrl::FullyDecoded)}};
    bus::whenAnswered(m_bus, call, this, timeout, [this, request](const QDBusMessage &answer) {
        if (answer.type() == QDBusMessage::ReplyMessage)
            return;
        qCDebug(mailLog) << "no mail portal:" << answer.errorMessage()
                         << "- opening the draft by its address";
        const auto instead = m_pending.value(request);
        forget(request);
        if (instead)
            instead();
    });
}

void MailPortal::finish(const QDBusMessage &response)
{
    const auto instead = m_pending.value(response.path());
    forget(response.path());
    if (instead && response.arguments().value(0).toUInt() == failedResponse)
        instead();
}

void MailPortal::listen(const QString &request)
{
    m_bus.connect(
        portalService, request, requestInterface, responseSignal, this, SLOT(finish(QDBusMessage)));
}

void MailPortal::forget(const QString &request)
{
    if (!m_pending.remove(request))
        return;
    m_bus.disconnect(
        portalService, request, requestInterface, responseSignal, this, SLOT(finish(QDBusMessage)));
}

} // namespace brimwatch::platform
