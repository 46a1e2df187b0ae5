#pragma once

#include "service/settings_file.h"

#include <QString>
#include <QVariant>

#include <limits>
#include <optional>

namespace brimwatch::platform {
class UserDefaults;
}

namespace brimwatch::service {

/// One setting: its key, and its value when the store has none or an invalid one.
template <typename T> struct Setting {
    const char *key;
    T defaultValue;
};

namespace settings {

inline constexpr Setting<double> refreshInterval{
    .key = "refreshInterval", .defaultValue = 60.0}; ///< Seconds; applied within these bounds:
inline constexpr double shortestRefreshInterval = 10.0;
/// The longest that a timer with 32 bits of milliseconds can hold, about 24 days.
inline constexpr double longestRefreshInterval = std::numeric_limits<qint32>::max() / 1000.0;
inline constexpr Setting<bool> showPercentageInMenuBar{
    .key = "showPercentageInMenuBar", .defaultValue = true};
inline constexpr Setting<bool> showFiveHourInMenuBar{
    .key = "showFiveHourInMenuBar", .defaultValue = true};
inline constexpr Setting<bool> showWeeklyInMenuBar{
    .key = "showWeeklyInMenuBar", .defaultValue = true};
inline constexpr Setting<bool> showIconInMenuBar{.key = "showIconInMenuBar", .defaultValue = true};
inline constexpr Setting<bool> useColoredStatusIndicator{
    .key = "useColoredStatusIndicator", .defaultValue = true};
inline constexpr Setting<bool> notifyOnLowQuota{.key = "notifyOnLowQuota", .defaultValue = true};
inline constexpr Setting<double> lowQuotaThreshold{
    .key = "lowQuotaThreshold", .defaultValue = 20.0}; ///< Percent.
inline constexpr Setting<bool> notifyOnRunOut{.key = "notifyOnRunOut", .defaultValue = false};
inline constexpr Setting<bool> notifyOnReturn{.key = "notifyOnReturn", .defaultValue = false};
inline constexpr Setting<bool> keepHistory{.key = "keepHistory", .defaultValue = true};
inline constexpr Setting<bool> showGeminiInToolbar{
    .key = "showGeminiInToolbar", .defaultValue = true};
inline constexpr Setting<bool> showArgonInToolbar{
    .key = "showArgonInToolbar", .defaultValue = false};
inline constexpr Setting<bool> showClaudeInToolbar{
    .key = "showClaudeInToolbar", .defaultValue = false};
inline constexpr Setting<const char *> toolbarLabelStyle{
    .key = "toolbarLabelStyle", .defaultValue = "letter"};

} // namespace settings

/// The user's settings, read on each access and written on each change. A value that is missing,
/// has the wrong type or is no finite number is the default; a text that spells a value ("true",
/// "1", "20") is that value. When the store cannot be read or written, settings are kept until the
/// program ends.
class SettingsStore {
public:
    /// The user's own store: on Linux brimwatch/brimwatch.conf in the user's configuration folder.
    SettingsStore();
    /// The system's store (macOS), which outlives this one.
    explicit SettingsStore(platform::UserDefaults &store);
    /// A store in a file of its own, for tests.
    explicit SettingsStore(const QString &iniFile);
    ~SettingsStore();
    Q_DISABLE_COPY_MOVE(SettingsStore)

    bool value(const Setting<bool> &setting) const;
    double value(const Setting<double> &setting) const;
    QString value(const Setting<const char *> &setting) const;

    void setValue(const Setting<bool> &setting, bool value);
    /// A number that is not finite is stored as the default.
    void setValue(const Setting<double> &setting, double value);
    void setValue(const Setting<const char *> &setting, const QString &value);

    /// Writes at once what would be written soon; the system's store does that by itself.
    void flush();

private:
    QVariant stored(const char *key) const;
    void store(const char *key, const QVariant &value);

    // One of the two.
    std::optional<SettingsFile> m_file;
    platform::UserDefaults *m_userDefaults = nullptr;
};

} // namespace brimwatch::service
