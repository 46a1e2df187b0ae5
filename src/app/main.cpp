#include "app/app_delegate.h"
#include "app/command_line.h"
#include "app/views_library.h"
#include "core/plain_text.h"
#include "platform/linux/bus/bus_return.h"
#include "platform/linux/bus/bus_service.h"
#include "platform/linux/bus/single_instance.h"
#include "platform/linux/linux_desktop.h"
#include "platform/linux/process_start.h"
#include "platform/linux/qt_application.h"
#include "platform/linux/replacement.h"
#include "platform/linux/session.h"
#include "service/settings.h"

#include <QGuiApplication>

#include <cstdio>
#include <optional>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What only the first Brimwatch of the session makes.
class FirstInstance {
public:
    FirstInstance(const platform::Session &session, platform::BusService &busService)
        : m_desktop(session, busService)
        , m_delegate(m_settings, m_desktop.desktop(), app::viewsFromLibrary)
    {
        m_delegate.applicationDidFinishLaunching();
        if (platform::takesOverOpening())
            m_delegate.statusBarController()->showPopover();
    }

private:
    service::SettingsStore m_settings;
    platform::LinuxDesktop m_desktop;
    app::AppDelegate m_delegate;
};

/// Says what a second start has done, and returns its exit status. `otherDisplay` is that of the
/// first one's popover, empty when it is not known.
app::ExitStatus endSecondStart(
    platform::SingleInstance::Outcome outcome, const QString &otherDisplay)
{
    using Outcome = platform::SingleInstance::Outcome;
    switch (outcome) {
    case Outcome::OtherSilent:
        std::fputs("brimwatch: already running, but it does not answer\n", stderr);
        return app::ExitStatus::Failure;
    case Outcome::OtherLocked:
        std::fputs("brimwatch: already running; there is no session bus over which to ask it to "
                   "open its popover\n",
            stderr);
        return app::ExitStatus::Success;
    case Outcome::OtherShown:
    case Outcome::First:
        break;
    }
    if (otherDisplay.isEmpty() || platform::Session::isOnDisplay(otherDisplay))
        std::fputs("brimwatch: already running; its popover is open now\n", stderr);
    else
        std::fprintf(stderr,
            "brimwatch: already running on display '%s'; its popover is open there\n",
            qPrintable(asOneLine(otherDisplay, 100)));
    return app::ExitStatus::Success;
}

/// Runs the program until it ends, and sets its path.
int run(const platform::SessionEnvironment &environment, int argc, char **argv, QString &path)
{
    QCoreApplication::setApplicationName(u"brimwatch"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIMWATCH_VERSION));
    QGuiApplication::setApplicationDisplayName(u"Brimwatch"_s);
    QGuiApplication::setDesktopFileName(QStringLiteral(BRIMWATCH_IDENTIFIER));
    const auto application = platform::makeApplication(environment, argc, argv);
    path = QCoreApplication::applicationFilePath();
    const platform::Session session(environment);
    // On the bus before the name is ours, so that nobody finds the name without it.
    platform::BusService busService(
        platform::Session::bus(), QCoreApplication::applicationVersion(), session.display());
    platform::SingleInstance singleInstance(
        platform::Session::bus(), platform::Session::runtimeFolder());
    std::optional<FirstInstance> first;
    QObject::connect(&singleInstance, &platform::SingleInstance::decided, application.get(),
        [&](platform::SingleInstance::Outcome outcome) {
            if (outcome == platform::SingleInstance::Outcome::First)
                first.emplace(session, busService);
            else
                QCoreApplication::exit(
                    static_cast<int>(endSecondStart(outcome, singleInstance.otherDisplay())));
        });
    platform::BusReturn busReturn(platform::Session::bus());
    QObject::connect(&busReturn, &platform::BusReturn::returned, application.get(),
        [] { QCoreApplication::exit(platform::restartStatus); });
    singleInstance.claim();
    return QGuiApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    platform::beginProcess();
    if (const auto answered = app::answerCommandLine(argc, argv))
        return static_cast<int>(*answered);
    const auto environment = platform::SessionEnvironment::read();
    if (!platform::isDisplayThere(environment))
        return static_cast<int>(app::ExitStatus::Failure);
    QString path;
    const int status = run(environment, argc, argv, path);
    if (status != platform::replacementStatus && status != platform::restartStatus)
        return status;
    const bool wasReplaced = status == platform::replacementStatus;
    platform::continueAs(path, wasReplaced ? platform::Opening::Yes : platform::Opening::No);
    if (wasReplaced)
        std::fputs(
            "brimwatch: was upgraded while it ran, and cannot start the new program\n", stderr);
    else
        std::fputs("brimwatch: cannot start anew on the session bus that is back\n", stderr);
    return static_cast<int>(app::ExitStatus::Failure);
}
