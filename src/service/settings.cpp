#include "service/settings.h"

#include "platform/user_defaults.h"

#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace brimwatch::service {
namespace {

using namespace Qt::Literals::StringLiterals;

bool isNumber(const QVariant &value)
{
    constexpr std::array numbers{QMetaType::Int, QMetaType::UInt, QMetaType::LongLong,
        QMetaType::ULongLong, QMetaType::Float, QMetaType::Double};
    return std::find(numbers.begin(), numbers.end(), value.typeId()) != numbers.end();
}

std::optional<bool> asBool(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    // Some stores keep true as 1.
    if (isNumber(value))
        return value.toDouble() != 0;
    if (value.typeId() == QMetaType::QString) {
        const QString text = value.toString().trimmed();
        if (text == "1"_L1 || text.compare("true"_L1, Qt::CaseInsensitive) == 0)
            return true;
        if (text == "0"_L1 || text.compare("false"_L1, Qt::CaseInsensitive) == 0)
            return false;
    }
    return std::nullopt;
}

std::optional<double> asNumber(const QVariant &value)
{
    if (!isNumber(value) && value.typeId() != QMetaType::QString)
        return std::nullopt;
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (!ok || !std::isfinite(number))
        return std::nullopt;
    return number;
}

QList<QByteArray> allKeys()
{
    using namespace settings;
    return {refreshInterval.key, showPercentageInMenuBar.key, showFiveHourInMenuBar.key,
        showWeeklyInMenuBar.key, showIconInMenuBar.key, useColoredStatusIndicator.key,
        notifyOnLowQuota.key, lowQuotaThreshold.key, notifyOnRunOut.key, notifyOnReturn.key,
        keepHistory.key, showGeminiInToolbar.key, showArgonInToolbar.key, showClaudeInToolbar.key,
        toolbarLabelStyle.key};
}

} // namespace

SettingsStore::SettingsStore()
    : SettingsStore(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
          + u"/brimwatch/brimwatch.conf"_s)
{
}

SettingsStore::SettingsStore(platform::UserDefaults &store)
    : m_userDefaults(&store)
{
}

SettingsStore::SettingsStore(const QString &iniFile)
{
    m_file.emplace(iniFile, allKeys());
}

SettingsStore::~SettingsStore() = default;

bool SettingsStore::value(const Setting<bool> &setting) const
{
    return asBool(stored(setting.key)).value_or(setting.defaultValue);
}

double SettingsStore::value(const Setting<double> &setting) const
{
    return asNumber(stored(setting.key)).value_or(setting.defaultValue);
}

QString SettingsStore::value(const Setting<const char *> &setting) const
{
    const QVariant value = stored(setting.key);
    // The INI format reads an unquoted text with commas as a list: that is no text.
    return value.typeId() == QMetaType::QString ? value.toString()
                                                : QString::fromLatin1(setting.defaultValue);
}

void SettingsStore::setValue(const Setting<bool> &setting, bool value)
{
    store(setting.key, value);
}

void SettingsStore::setValue(const Setting<double> &setting, double value)
{
    store(setting.key, std::isfinite(value) ? value : setting.defaultValue);
}

void SettingsStore::setValue(const Setting<const char *> &setting, const QString &value)
{
    store(setting.key, value);
}

void SettingsStore::flush()
{
    if (m_file)
        m_file->write();
}

QVariant SettingsStore::stored(const char *key) const
{
    if (m_userDefaults != nullptr)
        return m_userDefaults->value(key);
    const auto value = m_file->value(key);
    return value ? QVariant(*value) : QVariant();
}

void SettingsStore::store(const char *key, const QVariant &value)
{
    if (m_userDefaults != nullptr)
        m_userDefaults->setValue(key, value);
    else
        m_file->setValue(key, value.toString());
}

} // namespace brimwatch::service
