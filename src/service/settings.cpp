#include "service/settings.h"

#include <QFileInfo>
#include <QSettings>
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

/// Whether the store can read that file in bounded time and memory: no pipe, device or folder. A
/// file that does not exist yet is fine.
bool isReadable(const QString &fileName)
{
    constexpr qint64 largestFile = 1024LL * 1024;
    const QFileInfo file(fileName);
    return !file.exists() || (file.isFile() && file.size() <= largestFile);
}

} // namespace

SettingsStore::SettingsStore()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    if (isReadable(folder % u"/brimwatch/brimwatch.conf"_s)) {
        m_store = std::make_unique<QSettings>(
            QSettings::NativeFormat, QSettings::UserScope, u"brimwatch"_s, u"brimwatch"_s);
        // Only the user's own file counts, no system-wide one of the same name.
        m_store->setFallbacksEnabled(false);
    }
}

SettingsStore::SettingsStore(const UserDefaults &store)
{
    // QSettings builds the domain from the organization's domain, which it reverses, and the
    // program's name.
    QStringList parts = store.domain.split(u'.');
    const QString program = parts.takeLast();
    std::reverse(parts.begin(), parts.end());
    m_store = std::make_unique<QSettings>(
        QSettings::NativeFormat, QSettings::UserScope, parts.join(u'.'), program);
    m_store->setFallbacksEnabled(false);
}

SettingsStore::SettingsStore(const QString &iniFile)
{
    if (isReadable(iniFile))
        m_store = std::make_unique<QSettings>(iniFile, QSettings::IniFormat);
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

QString SettingsStore::fileName() const
{
    return m_store ? m_store->fileName() : QString();
}

QVariant SettingsStore::stored(const char *key) const
{
    return m_store ? m_store->value(QLatin1StringView(key)) : m_unsaved.value(key);
}

void SettingsStore::store(const char *key, const QVariant &value)
{
    if (m_store)
        m_store->setValue(QLatin1StringView(key), value);
    else
        m_unsaved.insert(key, value);
}

} // namespace brimwatch::service
