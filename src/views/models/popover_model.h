#pragma once

#include "model/color_token.h"
#include "service/quota_service.h"
#include "views/dashboard/refresh_spin.h"
#include "views/models/entry_list.h"
#include "views/models/quota_entries.h"

#include <QAbstractItemModel>
#include <QColor>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>

namespace brimwatch::platform {
class Opener;
}

namespace brimwatch::views {

class Theme;

/// What the dashboard shows and does. It follows the service only while the popover is shown, and
/// reads all of it anew before it is shown.
class PopoverModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the popover's content.")
    Q_PROPERTY(Body body READ body NOTIFY bodyChanged FINAL)
    Q_PROPERTY(QAbstractItemModel *groups READ groups CONSTANT FINAL)
    Q_PROPERTY(QString moreText READ moreText NOTIFY moreTextChanged FINAL)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusTextChanged FINAL)
    Q_PROPERTY(QColor statusColor READ statusColor NOTIFY statusColorChanged FINAL)
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorTextChanged FINAL)
    Q_PROPERTY(QString updatedText READ updatedText NOTIFY updatedTextChanged FINAL)
    Q_PROPERTY(QString updatedAccessibleName READ updatedAccessibleName NOTIFY
            updatedAccessibleNameChanged FINAL)
    Q_PROPERTY(QString refreshToolTip READ refreshToolTip CONSTANT FINAL)
    Q_PROPERTY(bool isRefreshing READ isRefreshing NOTIFY isRefreshingChanged FINAL)
    Q_PROPERTY(bool isShown READ isShown NOTIFY isShownChanged FINAL)
    Q_PROPERTY(bool showingSettings MEMBER m_showingSettings NOTIFY showingSettingsChanged FINAL)
    Q_PROPERTY(brimwatch::views::RefreshSpin *spin READ spin CONSTANT FINAL)

public:
    enum class Body { Cards, Loading, Offline };
    Q_ENUM(Body)
    enum class ScrollStep { LineUp, LineDown, PageUp, PageDown, Start, End };
    Q_ENUM(ScrollStep)

    /// How many cards, and rows in all of them together, are shown; the rest is only counted. No
    /// working daemon has that many, and a broken one must not make the popover slow.
    static constexpr qsizetype maximumGroups = 100;
    static constexpr qsizetype maximumRows = 200;
    /// As many cards as the first frame can show; the others follow a few at a time, so that the
    /// first click is answered at once.
    static constexpr qsizetype initialGroups = 3;

    struct Dependencies {
        service::QuotaService &quotaService;
        const Theme &theme;
        platform::Opener &opener;
        std::function<void()> terminate;
        std::function<void()> close;
    };

    explicit PopoverModel(Dependencies dependencies, QObject *parent = nullptr);

    void setShown(bool shown);
    bool isShown() const { return m_isShown; }

    /// Which face the view shows. Only the view sets it; others request the settings.
    bool showingSettings() const { return m_showingSettings; }

    Body body() const { return m_body; }
    /// The cards, each a GroupEntry in the role "group".
    QAbstractItemModel *groups() { return &m_groups; }
    /// "and 12 more" of the groups that have no card; empty when all have.
    const QString &moreText() const { return m_moreText; }
    const QString &statusText() const { return m_statusText; }
    QColor statusColor() const;
    /// Empty: there is no error.
    const QString &errorText() const { return m_errorText; }
    /// "Updated 42s ago" or "Waiting for update"
    const QString &updatedText() const { return m_updatedText; }
    /// The same in whole minutes: "Updated just now" during the first one.
    const QString &updatedAccessibleName() const { return m_updatedAccessibleName; }
    QString refreshToolTip() const;
    bool isRefreshing() const { return m_isRefreshing; }
    RefreshSpin *spin() { return &m_spin; }

    /// Refreshes and spins, unless a refresh or a spin is running.
    Q_INVOKABLE void performRefresh();
    void triggerSpinAnimation() { m_spin.trigger(); }
    /// Opens the IDE; where none is installed, the daemon's own page; and closes the popover, which
    /// has the keyboard. Without either nothing happens.
    Q_INVOKABLE void openAntigravity();
    Q_INVOKABLE void quit() const;
    void close() const;

Q_SIGNALS:
    void bodyChanged();
    void moreTextChanged();
    void statusTextChanged();
    void statusColorChanged();
    void errorTextChanged();
    void updatedTextChanged();
    void updatedAccessibleNameChanged();
    void isRefreshingChanged();
    void isShownChanged();
    void showingSettingsChanged();
    /// The view has to show the settings.
    void settingsRequested();
    /// The view has to show the dashboard.
    void dashboardRequested();
    /// The view has to scroll what it shows.
    void scrollRequested(brimwatch::views::PopoverModel::ScrollStep step);

private:
    void watchTime();
    void connectService();
    void readAll();
    void readGroups();
    void addGroups();
    void readStatus();
    void readError();
    void readRefreshing();
    void readBody();
    void readUpdated();
    void readTime();

    Dependencies m_dependencies;
    service::QuotaService &m_service;
    EntryList<GroupEntry, ShownGroup> m_groups;
    RefreshSpin m_spin;
    QList<ShownGroup> m_sortedGroups;
    qsizetype m_groupsShown = initialGroups;

    /// While the dashboard is shown.
    std::optional<service::QuotaService::TimeWatch> m_timeWatch;
    bool m_isShown = false;
    bool m_showingSettings = false;
    bool m_isRefreshing = false;
    Body m_body = Body::Offline;
    QString m_moreText;
    QString m_statusText;
    model::ColorToken m_statusColor = model::ColorToken::SystemOrange;
    QString m_errorText;
    QString m_updatedText;
    QString m_updatedAccessibleName;
};

} // namespace brimwatch::views
