#include "app/app_delegate.h"

#include "platform/application_presence.h"

namespace brimwatch::app {

AppDelegate::AppDelegate(platform::ApplicationPresence &presence, MakeQuotaService makeQuotaService,
    MakeStatusBarController makeStatusBarController)
    : m_presence(presence)
    , m_makeQuotaService(std::move(makeQuotaService))
    , m_makeStatusBarController(std::move(makeStatusBarController))
{
}

void AppDelegate::applicationDidFinishLaunching()
{
    m_presence.becomeAccessory();
    m_presence.closeWindows();
    m_quotaService = m_makeQuotaService();
    m_statusBarController = m_makeStatusBarController(*m_quotaService);
}

} // namespace brimwatch::app
