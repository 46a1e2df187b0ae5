#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVariant>

#include <memory>

class QSettings;

namespace brimwatch::service {

/// One setting: its key and what counts when the store has none or one that makes no sense.
template <typename T> struct Setting {
    const char *key;
    T fallback;
};

namespace settings {

inline constexpr Setting<double> refreshInterval{
    .key = "refreshInterval", .fallback = 60.0}; ///< Seconds; applied with a floor of 10.
inline constexpr Setting<bool> showPercentageInMenuBar{
    .key = "showPercentageInMenuBar", .fallback = true};
inline constexpr Setting<bool> showFiveHourInMenuBar{
    .key = "showFiveHourInMenuBar", .fallback = true};
inline constexpr Setting<bool> showWeeklyInMenuBar{.key = "showWeeklyInMenuBar", .fallback = true};
inline constexpr Setting<bool> showIconInMenuBar{.key = "showIconInMenuBar", .fallback = true};
inline constexpr Setting<bool> useColoredStatusIndicator{
    .key = "useColoredStatusIndicator", .fallback = true};
inline constexpr Setting<bool> notifyOnLowQuota{.key = "notifyOnLowQuota", .fallback = true};
inline constexpr Setting<double> lowQuotaThreshold{
    .key = "lowQuotaThreshold", .fallback = 20.0}; ///< Percent.
inline constexpr Setting<bool> showGeminiInToolbar{.key = "showGeminiInToolbar", .fallback = true};
inline constexpr Setting<bool> showArgonInToolbar{.key = "showArgonInToolbar", .fallback = false};
inline constexpr Setting<bool> showClaudeInToolbar{.key = "showClaudeInToolbar", .fallback = false};
inline constexpr Setting<const char *> toolbarLabelStyle{
    .key = "toolbarLabelStyle", .fallback = "letter"};

} // namespace settings

/// The user's settings, read on each access and written on each change. A value of the wrong type,
/// one that is no finite number, or none counts as the default; a text that says a value ("true",
/// "1", "20") is that value. A store that cannot be read or written costs what it held, never the
/// program: what is set then holds until the program ends.
class SettingsStore {
public:
    /// The user's own store: on Linux brimwatch/brimwatch.conf in the user's configuration folder.
    SettingsStore();
    /// The system's store of what users have chosen, where there is one (macOS), under that domain:
    /// "app.brimwatch.Brimwatch". Elsewhere a file in the user's configuration folder.
    struct UserDefaults {
        QString domain;
    };
    explicit SettingsStore(const UserDefaults &store);
    /// A store in a file of its own, for tests.
    explicit SettingsStore(const QString &iniFile);
    ~SettingsStore();
    SettingsStore(const SettingsStore &) = delete;
    SettingsStore &operator=(const SettingsStore &) = delete;
    SettingsStore(SettingsStore &&) = delete;
    SettingsStore &operator=(SettingsStore &&) = delete;

    bool value(const Setting<bool> &setting) const;
    double value(const Setting<double> &setting) const;
    QString value(const Setting<const char *> &setting) const;

    void setValue(const Setting<bool> &setting, bool value);
    /// What is no finite number is stored as the default.
    void setValue(const Setting<double> &setting, double value);
    void setValue(const Setting<const char *> &setting, const QString &value);

    /// Where the settings are kept; empty when nowhere.
    QString fileName() const;

private:
    QVariant stored(const char *key) const;
    void store(const char *key, const QVariant &value);

    std::unique_ptr<QSettings> m_store; ///< Null when the file is nothing that can hold settings.
    QHash<QByteArray, QVariant> m_unsaved; ///< Used without a store.
};

} // namespace brimwatch::service
