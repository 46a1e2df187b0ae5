#include "dbus/desktop/fake_mail_portal.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusObjectPath>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto path = "/org/freedesktop/portal/desktop"_L1;

} // namespace

FakeMailPortal::FakeMailPortal(Manners manners)
    : m_manners(manners)
{
    m_program.bus().registerVirtualObject(path, this);
    if (!m_program.takeName(u"org.freedesktop.portal.Desktop"_s))
        qFatal("another program is the portal of this bus");
}

FakeMailPortal::~FakeMailPortal()
{
    m_program.bus().unregisterObject(path);
}

QString FakeMailPortal::introspect(const QString & /*path*/) const
{
    return {};
}

bool FakeMailPortal::handleMessage(
    const QDBusMessage &message, const QDBusConnection & /*connection*/)
{
    if (message.interface() != "org.freedesktop.portal.Email"_L1
        || message.member() != "ComposeEmail"_L1 || message.signature() != "sa{sv}"_L1)
        return false;
    const auto options = qdbus_cast<QVariantMap>(message.arguments().value(1));
    drafts.append(options);
    if (m_manners == Manners::IsSilent)
        return true;
    if (m_manners == Manners::Refuses) {
        m_program.bus().send(
            message.createErrorReply(QDBusError::UnknownMethod, u"there is no mail program"_s));
        return true;
    }
    QString sender = message.service().mid(1);
    sender.replace(u'.', u'_');
    const QString request
        = path + "/request/"_L1 + sender + u'/' + options.value(u"handle_token"_s).toString();
    m_program.bus().send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
    constexpr uint done = 0;
    constexpr uint declined = 1;
    constexpr uint failed = 2;
    if (m_manners == Manners::Opens)
        respond(request, done);
    else
        respond(request, m_manners == Manners::IsDeclined ? declined : failed);
    return true;
}

void FakeMailPortal::respond(const QString &request, uint response)
{
    auto signal
        = QDBusMessage::createSignal(request, u"org.freedesktop.portal.Request"_s, u"Response"_s);
    signal << response << QVariantMap();
    m_program.bus().send(signal);
}

} // namespace brimwatch::test
