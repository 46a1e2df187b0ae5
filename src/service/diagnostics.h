#pragma once

#include "platform/app_information.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

namespace brimwatch::service {

class QuotaService;

/// One line of what the settings show: what it is, and its value.
struct DiagnosticLine {
    Q_GADGET
    Q_PROPERTY(QString label MEMBER label CONSTANT FINAL)
    Q_PROPERTY(QString value MEMBER value CONSTANT FINAL)

public:
    QString label;
    QString value;

    bool operator==(const DiagnosticLine &) const = default;
};

/// What is known when something is wrong: as rows for the settings, and as a report for support.
class Diagnostics {
public:
    /// How much of the daemon's token the report holds: all of it, or its beginning as the rows
    /// have it, and nothing of one that they show whole.
    enum class Token { Complete, Truncated };

    /// The service outlives it. `home` is the user's home directory.
    Diagnostics(
        const QuotaService &quotaService, platform::AppInformation information, QString home);

    /// "Brimwatch v0.1.0 (12)"; without a build number no parentheses. A version that is not known
    /// is "1.0.0".
    QString appVersionString() const;
    /// When the quota was last updated, in the user's locale and with seconds; "Never" before.
    QString lastUpdateString() const;

    /// The rows of the active daemon; none without one. The token is cut, and has no row when there
    /// is none.
    QList<DiagnosticLine> daemonRows() const;

    /// The whole report, each line ended by a line feed. With the daemon's whole token it is for
    /// support, and goes nowhere but where the user sends it.
    QString generateDiagnosticInfo(Token token = Token::Complete) const;

    /// Opens a mail to support with the report in it.
    QUrl supportMailUrl() const;
    /// Where daemons announce themselves, whether it exists or not.
    QUrl daemonFolderUrl() const;

private:
    const QuotaService &m_quotaService;
    platform::AppInformation m_information;
    QString m_home;
};

/// The first eight characters and "..."; a shorter token stands whole before them.
QString truncatedToken(const QString &token);

/// An address that opens a mail (RFC 6068). Subject and body are percent-encoded but for what may
/// stand in a query as it is; a plus sign is one of these.
QUrl mailUrl(const QString &address, const QString &subject, const QString &body);

} // namespace brimwatch::service
