#include "service/diagnostics.h"

#include "core/date_styles.h"
#include "core/plain_text.h"
#include "discovery/daemon_discovery_service.h"
#include "platform/wording.h"
#include "service/quota_service.h"

#include <QStringList>
#include <QTextBoundaryFinder>

#include <utility>

namespace brimwatch::service {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString supportAddress = QStringLiteral(BRIMWATCH_SUPPORT_ADDRESS);

/// Of a line of the report; a token is shorter.
constexpr qsizetype longestValue = 4096;

QString pidText(const discovery::DaemonInfo &daemon)
{
    return QString::number(daemon.pid.value_or(0));
}

QString portText(const discovery::DaemonInfo &daemon)
{
    return QString::number(daemon.askedPort().value_or(0));
}

QString tokenText(const discovery::DaemonInfo &daemon, Diagnostics::Token token)
{
    if (!daemon.csrfToken)
        return u"N/A"_s;
    if (token == Diagnostics::Token::Complete)
        return *daemon.csrfToken;
    const QString beginning = truncatedToken(*daemon.csrfToken);
    return beginning.startsWith(*daemon.csrfToken) ? u"..."_s : beginning;
}

QString shownModels(const QuotaService &service)
{
    QStringList names;
    if (service.showGeminiInToolbar())
        names.append(u"Gemini"_s);
    if (service.showArgonInToolbar())
        names.append(u"Argon"_s);
    if (service.showClaudeInToolbar())
        names.append(u"Claude"_s);
    return names.isEmpty() ? u"None"_s : names.join(u", "_s);
}

/// A part of a query. "&", "=" and "#" would end it.
QByteArray queryEncoded(const QString &text)
{
    return QUrl::toPercentEncoding(text, "!$'()*+,;:@/?"_ba);
}

} // namespace

Diagnostics::Diagnostics(
    const QuotaService &quotaService, platform::AppInformation information, QString home)
    : m_quotaService(quotaService)
    , m_information(std::move(information))
    , m_home(std::move(home))
{
}

QString Diagnostics::appVersionString() const
{
    const QString version = "Brimwatch v"_L1 + m_information.version.value_or(u"1.0.0"_s);
    const QString build = m_information.build.value_or(QString());
    return build.isEmpty() ? version : QString(version + " ("_L1 + build + u')');
}

QString Diagnostics::lastUpdateString() const
{
    const auto updated = m_quotaService.lastUpdated();
    return updated ? DateStyles::user().dateAbbreviatedTimeStandard(*updated) : u"Never"_s;
}

QList<DiagnosticLine> Diagnostics::daemonRows() const
{
    const auto &daemon = m_quotaService.activeDaemon();
    if (!daemon)
        return {};
    QList<DiagnosticLine> rows{
        {.label = u"Status"_s, .value = "Active (PID "_L1 + pidText(*daemon) + u')'},
        {.label = u"Port"_s, .value = portText(*daemon)},
        {.label = u"Version"_s,
            .value = asOneLine(daemon->lsVersion.value_or(u"Unknown"_s), longestValue)},
    };
    if (daemon->csrfToken)
        rows.append({.label = u"CSRF"_s, .value = truncatedToken(*daemon->csrfToken)});
    return rows;
}

QString Diagnostics::generateDiagnosticInfo(Token token) const
{
    QList<DiagnosticLine> lines{
        {.label = u"App Version"_s, .value = appVersionString()},
        {.label = platform::wording().systemVersionLabel, .value = m_information.systemVersion},
        {.label = u"Launch at Login"_s,
            .value = m_quotaService.launchAtLogin() ? u"Enabled"_s : u"Disabled"_s},
        {.label = u"Toolbar Models"_s, .value = shownModels(m_quotaService)},
        {.label = u"Toolbar Label Style"_s, .value = m_quotaService.toolbarLabelStyle()},
        {.label = u"Connection Status"_s, .value = m_quotaService.connectionStatus().displayText()},
    };
    if (const auto &daemon = m_quotaService.activeDaemon()) {
        lines += {
            {.label = u"Daemon PID"_s, .value = pidText(*daemon)},
            {.label = u"Daemon Port"_s, .value = portText(*daemon)},
            {.label = u"Daemon Version"_s, .value = daemon->lsVersion.value_or(u"N/A"_s)},
            {.label = u"Daemon CSRF"_s, .value = tokenText(*daemon, token)},
        };
    } else {
        lines.append({.label = u"Daemon"_s, .value = u"No active daemon detected"_s});
    }
    if (const auto &message = m_quotaService.errorMessage())
        lines.append({.label = u"Last Error"_s, .value = *message});
    lines.append({.label = u"Last Update"_s, .value = lastUpdateString()});

    QString report = u"--- Brimwatch Diagnostics ---\n"_s;
    for (const auto &[label, value] : std::as_const(lines))
        report += label + ": "_L1 + asOneLine(value, longestValue) + u'\n';
    return report;
}

QUrl Diagnostics::supportMailUrl() const
{
    return mailUrl(supportAddress, u"Brimwatch"_s,
        "Hi Brimwatch Support,\n\n[Please describe your issue or feedback here]\n\n\n"_L1
            + generateDiagnosticInfo());
}

QUrl Diagnostics::daemonFolderUrl() const
{
    return QUrl::fromLocalFile(discovery::daemonFolder(m_home));
}

QString truncatedToken(const QString &token)
{
    constexpr int shownCharacters = 8;
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, token);
    qsizetype end = 0;
    for (int i = 0; i < shownCharacters && end < token.size(); ++i)
        end = characters.toNextBoundary();
    return token.left(end) + "..."_L1;
}

QUrl mailUrl(const QString &address, const QString &subject, const QString &body)
{
    const QByteArray url = "mailto:" + QUrl::toPercentEncoding(address, "@"_ba)
        + "?subject=" + queryEncoded(subject) + "&body=" + queryEncoded(body);
    return QUrl::fromEncoded(url);
}

} // namespace brimwatch::service
