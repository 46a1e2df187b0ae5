#pragma once

#include "service/quota_service.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace brimwatch::platform {
class Opener;
class Pasteboard;
} // namespace brimwatch::platform

namespace brimwatch::service {
class Diagnostics;
class LaunchAtLoginService;
} // namespace brimwatch::service

namespace brimwatch::views {

/// What the settings show and do beyond the service's own properties, to which they are bound.
class SettingsModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the popover's content.")
    Q_PROPERTY(brimwatch::service::QuotaService *service READ service CONSTANT FINAL)
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY
            launchAtLoginChanged FINAL)
    Q_PROPERTY(bool requiresApproval READ requiresApproval NOTIFY launchAtLoginChanged FINAL)
    Q_PROPERTY(QString approvalText READ approvalText CONSTANT FINAL)
    Q_PROPERTY(QList<QString> labelStyleNames READ labelStyleNames CONSTANT FINAL)
    Q_PROPERTY(int labelStyle READ labelStyle WRITE setLabelStyle NOTIFY labelStyleChanged FINAL)
    Q_PROPERTY(QList<QString> refreshIntervalNames READ refreshIntervalNames CONSTANT FINAL)
    Q_PROPERTY(int refreshInterval READ refreshInterval WRITE setRefreshInterval NOTIFY
            refreshIntervalChanged FINAL)
    Q_PROPERTY(QString thresholdText READ thresholdText NOTIFY thresholdTextChanged FINAL)
    Q_PROPERTY(QVariantList daemonRows READ daemonRows NOTIFY daemonRowsChanged FINAL)
    Q_PROPERTY(QString lastUpdate READ lastUpdate NOTIFY lastUpdateChanged FINAL)
    Q_PROPERTY(QString appVersion READ appVersion CONSTANT FINAL)

public:
    /// Everything outlives the model.
    struct Dependencies {
        service::QuotaService &quotaService;
        service::LaunchAtLoginService &launchAtLogin;
        const service::Diagnostics &diagnostics;
        platform::Opener &opener;
        platform::Pasteboard &pasteboard;
        std::function<void()> terminate;
        /// Closes the popover.
        std::function<void()> close;
    };

    explicit SettingsModel(Dependencies dependencies, QObject *parent = nullptr);

    service::QuotaService *service() const { return &m_dependencies.quotaService; }

    /// Asks the system whether it starts us at login: each time the settings are shown.
    void refreshLaunchAtLogin();
    bool launchAtLogin() const;
    void setLaunchAtLogin(bool enabled);
    bool requiresApproval() const;
    QString approvalText() const;

    QStringList labelStyleNames() const;
    /// The index of the style in use; the first one if the stored text names none.
    int labelStyle() const;
    void setLabelStyle(int index);

    QStringList refreshIntervalNames() const;
    /// The index of the stored interval; -1 if it is none of those offered.
    int refreshInterval() const;
    void setRefreshInterval(int index);

    /// "20%"
    QString thresholdText() const;

    /// What is known of the active daemon, each a service::DiagnosticLine; empty without one.
    QVariantList daemonRows() const;
    QString lastUpdate() const;
    QString appVersion() const;

    // What opens another program closes the popover first, which has the keyboard.
    Q_INVOKABLE void openLoginSettings();
    Q_INVOKABLE void openDaemonFolder();
    Q_INVOKABLE void copyDiagnostics();
    Q_INVOKABLE void sendSupportEmail();
    Q_INVOKABLE void quit() const;

Q_SIGNALS:
    void launchAtLoginChanged();
    void labelStyleChanged();
    void refreshIntervalChanged();
    void thresholdTextChanged();
    void daemonRowsChanged();
    void lastUpdateChanged();

private:
    void close() const;

    Dependencies m_dependencies;
};

} // namespace brimwatch::views
