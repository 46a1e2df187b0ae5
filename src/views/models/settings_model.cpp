#include "views/models/settings_model.h"

#include "model/toolbar_models.h"
#include "platform/opener.h"
#include "platform/pasteboard.h"
#include "platform/wording.h"
#include "service/diagnostics.h"
#include "service/launch_at_login_service.h"
#include "views/models/quota_entries.h"

#include <QUrl>

#include <algorithm>
#include <array>

namespace brimwatch::views {

using namespace Qt::Literals::StringLiterals;

namespace {

struct IntervalOption {
    QLatin1StringView name;
    double seconds = 0;
};

constexpr std::array intervalOptions{IntervalOption{.name = "15 seconds"_L1, .seconds = 15},
    IntervalOption{.name = "30 seconds"_L1, .seconds = 30},
    IntervalOption{.name = "1 minute"_L1, .seconds = 60},
    IntervalOption{.name = "2 minutes"_L1, .seconds = 120},
    IntervalOption{.name = "5 minutes"_L1, .seconds = 300}};

/// The element at that index; null if there is none.
template <typename T, std::size_t Size>
const T *elementAt(const std::array<T, Size> &elements, int index)
{
    return index >= 0 && static_cast<std::size_t>(index) < Size
        ? &elements.at(static_cast<std::size_t>(index))
        : nullptr;
}

template <typename Range, typename Predicate> int indexWhere(const Range &range, Predicate matches)
{
    const auto found = std::find_if(range.begin(), range.end(), matches);
    return found == range.end() ? -1 : static_cast<int>(found - range.begin());
}

} // namespace

SettingsModel::SettingsModel(Dependencies dependencies, QObject *parent)
    : QObject(parent)
    , m_dependencies(std::move(dependencies))
{
    using service::QuotaService;
    const auto *quotaService = &m_dependencies.quotaService;
    connect(&m_dependencies.launchAtLogin, &service::LaunchAtLoginService::changed, this,
        &SettingsModel::launchAtLoginChanged);
    connect(quotaService, &QuotaService::toolbarLabelStyleChanged, this,
        &SettingsModel::labelStyleChanged);
    connect(quotaService, &QuotaService::refreshIntervalChanged, this,
        &SettingsModel::refreshIntervalChanged);
    connect(quotaService, &QuotaService::lowQuotaThresholdChanged, this,
        &SettingsModel::thresholdTextChanged);
    connect(
        quotaService, &QuotaService::activeDaemonChanged, this, &SettingsModel::daemonRowsChanged);
    connect(
        quotaService, &QuotaService::lastUpdatedChanged, this, &SettingsModel::lastUpdateChanged);
}

void SettingsModel::refreshLaunchAtLogin()
{
    m_dependencies.launchAtLogin.refresh();
}

bool SettingsModel::launchAtLogin() const
{
    return m_dependencies.quotaService.launchAtLogin();
}

void SettingsModel::setLaunchAtLogin(bool enabled)
{
    m_dependencies.quotaService.setLaunchAtLogin(enabled);
}

bool SettingsModel::requiresApproval() const
{
    return m_dependencies.launchAtLogin.requiresApproval();
}

QString SettingsModel::approvalText() const
{
    return platform::wording().requiresApproval;
}

QStringList SettingsModel::labelStyleNames() const
{
    QStringList names;
    for (const auto style : model::allToolbarLabelStyles)
        names.append(model::displayName(style));
    return names;
}

int SettingsModel::labelStyle() const
{
    const auto style = model::toolbarLabelStyle(m_dependencies.quotaService.toolbarLabelStyle());
    return indexWhere(
        model::allToolbarLabelStyles, [style](auto offered) { return offered == style; });
}

void SettingsModel::setLabelStyle(int index)
{
    if (const auto *style = elementAt(model::allToolbarLabelStyles, index))
        m_dependencies.quotaService.setToolbarLabelStyle(model::rawValue(*style));
}

QStringList SettingsModel::refreshIntervalNames() const
{
    QStringList names;
    for (const auto &option : intervalOptions)
        names.append(option.name);
    return names;
}

int SettingsModel::refreshInterval() const
{
    const double seconds = m_dependencies.quotaService.refreshInterval();
    return indexWhere(
        intervalOptions, [seconds](const auto &option) { return option.seconds == seconds; });
}

void SettingsModel::setRefreshInterval(int index)
{
    if (const auto *option = elementAt(intervalOptions, index))
        m_dependencies.quotaService.updateRefreshInterval(option->seconds);
}

QString SettingsModel::thresholdText() const
{
    // A hand-edited settings file may hold any number.
    constexpr double most = 1e15;
    const double threshold
        = std::clamp(m_dependencies.quotaService.lowQuotaThreshold(), -most, most);
    return QString::number(static_cast<qint64>(threshold)) + u'%';
}

QVariantList SettingsModel::daemonRows() const
{
    QVariantList rows;
    for (auto row : m_dependencies.diagnostics.daemonRows()) {
        row.value = shownText(row.value);
        rows.append(QVariant::fromValue(row));
    }
    return rows;
}

QString SettingsModel::lastUpdate() const
{
    return m_dependencies.diagnostics.lastUpdateString();
}

QString SettingsModel::appVersion() const
{
    return m_dependencies.diagnostics.appVersionString();
}

void SettingsModel::openLoginSettings()
{
    close();
    m_dependencies.launchAtLogin.openSystemSettings();
}

void SettingsModel::openDaemonFolder()
{
    close();
    m_dependencies.opener.openUrl(m_dependencies.diagnostics.daemonFolderUrl());
}

void SettingsModel::copyDiagnostics()
{
    m_dependencies.pasteboard.setText(m_dependencies.diagnostics.generateDiagnosticInfo());
}

void SettingsModel::sendSupportEmail()
{
    if (const QUrl mail = m_dependencies.diagnostics.supportMailUrl(); mail.isValid()) {
        close();
        m_dependencies.opener.openUrl(mail);
    }
}

void SettingsModel::close() const
{
    if (m_dependencies.close)
        m_dependencies.close();
}

void SettingsModel::quit() const
{
    if (m_dependencies.terminate)
        m_dependencies.terminate();
}

} // namespace brimwatch::views
