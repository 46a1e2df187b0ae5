#pragma once

#include "core/clock.h"
#include "platform/desktop.h"
#include "platform/linux/appearance/desktop_appearance.h"
#include "platform/linux/desktop/autostart_login_item.h"
#include "platform/linux/desktop/desktop_notifier.h"
#include "platform/linux/desktop/desktop_opener.h"
#include "platform/linux/desktop/qt_application_presence.h"
#include "platform/linux/desktop/qt_pasteboard.h"
#include "platform/linux/desktop/resume_watch.h"
#include "platform/linux/no_panel_notice.h"
#include "platform/linux/symbols/svg_symbols.h"
#include "platform/linux/tray/label_painter.h"
#include "platform/linux/x11/x_connection.h"
#include "platform/linux/x11/x_scale.h"
#include "platform/linux/x11/xsettings.h"

#include <functional>
#include <memory>
#include <optional>

namespace brimwatch::platform {

class Session;

/// What Linux desktops give the program. From the start on it waits for a panel, and says so when
/// none takes the item.
class LinuxDesktop {
public:
    /// Both outlive it. The application object bears the program's names.
    LinuxDesktop(const Session &session, RemoteControl &remoteControl);

    /// Refers to this object.
    Desktop desktop();

private:
    std::unique_ptr<StatusItem> makeStatusItem();
    void whenResumed(std::function<void()> action);

    const Session &m_session;
    RemoteControl &m_remoteControl;
    SystemClock m_clock;
    XConnection m_xConnection;
    XSettings m_xSettings;
    XScale m_xScale;
    DesktopAppearance m_appearance;
    DesktopOpener m_opener;
    AutostartLoginItem m_loginItem;
    SvgSymbols m_symbols;
    LabelPainter m_labelPainter;
    DesktopNotifier m_notifier;
    QtPasteboard m_pasteboard;
    QtApplicationPresence m_presence;
    NoPanelNotice m_noPanelNotice;
    std::optional<ResumeWatch> m_resumeWatch;
};

} // namespace brimwatch::platform
