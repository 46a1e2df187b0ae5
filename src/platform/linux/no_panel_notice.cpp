#include "platform/linux/no_panel_notice.h"

#include "core/clock.h"
#include "platform/notifier.h"

#include <QFile>

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

NoPanelNotice::NoPanelNotice(
    Clock &clock, Notifier &notifier, QString sessionFolder, QStringList desktops, QObject *parent)
    : QObject(parent)
    , m_notifier(notifier)
    , m_sessionFolder(std::move(sessionFolder))
    , m_desktops(std::move(desktops))
    , m_timer(clock.every(timeout, [this] { timeOut(); }))
{
}

NoPanelNotice::~NoPanelNotice() = default;

void NoPanelNotice::panelCame()
{
    m_timer.reset();
}

void NoPanelNotice::timeOut()
{
    if (std::exchange(m_timedOut, true))
        return;
    // Queued: the timer is what calls.
    QMetaObject::invokeMethod(this, [this] { m_timer.reset(); }, Qt::QueuedConnection);
    if (isFirstOfSession())
        m_notifier.post(noPanelNotification(m_desktops));
}

bool NoPanelNotice::isFirstOfSession() const
{
    if (m_sessionFolder.isEmpty())
        return true;
    QFile told(m_sessionFolder + u'/' + toldFile);
    return told.open(QIODevice::WriteOnly | QIODevice::NewOnly) || !told.exists();
}

Notification noPanelNotification(const QStringList &desktops)
{
    const QString advice = desktops.contains(u"GNOME"_s, Qt::CaseInsensitive)
        ? u"GNOME shows status items only with an extension: install AppIndicator (on Debian the "
          "package gnome-shell-extension-appindicator), log in again and switch it on in "
          "Extensions."_s
        : u"This desktop has no place for status items now: add a status tray (also called system "
          "tray or notification area) to your panel."_s;
    return {.identifier = NoPanelNotice::identifier,
        .title = u"Brimwatch is running, but no panel shows it"_s,
        .body = advice
            + u" Until then, starting Brimwatch again or \"brimwatchctl toggle\" opens your quota."_s};
}

} // namespace brimwatch::platform
