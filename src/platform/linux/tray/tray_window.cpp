#include "platform/linux/tray/tray_window.h"

#include "platform/linux/x11/x_connection.h"

#include <QByteArrayView>
#include <QLoggingCategory>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace brimwatch::platform {

namespace {

Q_LOGGING_CATEGORY(trayWindowLog, "brimwatch.tray", QtInfoMsg)

// System tray protocol and XEmbed, their numbers.
constexpr std::uint32_t requestDockOpcode = 0;
constexpr std::uint32_t xembedVersion = 0;
constexpr std::uint32_t xembedMapped = 1;

// ICCCM, the part of WM_NORMAL_HINTS that panels read.
constexpr std::uint32_t programMinimumSize = 1U << 4;
struct SizeHints {
    std::uint32_t flags = 0;
    std::array<std::uint32_t, 4> obsolete{};
    std::uint32_t minimumWidth = 0;
    std::uint32_t minimumHeight = 0;
    std::array<std::uint32_t, 11> rest{};
};
static_assert(sizeof(SizeHints) == 18 * sizeof(std::uint32_t));

constexpr const char *colorsAtom = "_NET_SYSTEM_TRAY_COLORS";
constexpr const char *visualAtom = "_NET_SYSTEM_TRAY_VISUAL";
constexpr const char *opcodeAtom = "_NET_SYSTEM_TRAY_OPCODE";
constexpr const char *xembedInfoAtom = "_XEMBED_INFO";
constexpr const char *nameAtom = "_NET_WM_NAME";
constexpr const char *utf8Atom = "UTF8_STRING";

constexpr std::uint32_t windowEvents = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY
    | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_ENTER_WINDOW
    | XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_POINTER_MOTION;

int boundedWidth(int width)
{
    return std::clamp(width, 1, TrayWindow::largestDrawing.width());
}

} // namespace

TrayWindow::TrayWindow(XConnection &x, xcb_window_t manager, QObject *parent)
    : QObject(parent)
    , m_x(x)
    , m_manager(manager)
{
    connect(&m_x, &XConnection::eventReceived, this, &TrayWindow::handle);
    connect(&m_x, &XConnection::closed, this, &TrayWindow::lose);
    m_x.prefetchAtoms({colorsAtom, visualAtom, opcodeAtom, xembedInfoAtom, nameAtom, utf8Atom});
    m_x.selectInput(m_manager, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
}

TrayWindow::~TrayWindow()
{
    if (!m_x.isValid())
        return;
    xcb_connection_t *c = m_x.connection();
    if (m_gc != XCB_NONE)
        xcb_free_gc(c, m_gc);
    if (m_window != XCB_WINDOW_NONE)
        xcb_destroy_window(c, m_window);
    if (m_colormap != XCB_NONE)
        xcb_free_colormap(c, m_colormap);
    m_x.flush();
}

void TrayWindow::dock(QSize asked)
{
    if (!m_x.isValid() || exists())
        return;
    std::optional<XPixelFormat> format;
    if (const auto visual = m_x.cardinals(m_manager, visualAtom); !visual.isEmpty())
        format = pixelFormat(m_x, visual.first());
    if (!format)
        format = pixelFormat(m_x, m_x.screen()->root_visual);
    if (!format) {
        qCDebug(trayWindowLog) << "the screen has no visual that we can draw for - no item";
        return;
    }
    m_format = *format;
    m_askedWidth = asked.width();
    m_askedHeight = std::clamp(asked.height(), 1, largestDrawing.height());
    m_size = {boundedWidth(m_askedWidth), m_askedHeight};
    m_slot = m_size;
    createWindow();
    setProperties();
    writeSizeHints();
    requestDock();
}

void TrayWindow::createWindow()
{
    xcb_connection_t *c = m_x.connection();
    const xcb_window_t root = m_x.screen()->root;
    m_window = xcb_generate_id(c);
    m_colormap = xcb_generate_id(c);
    m_gc = xcb_generate_id(c);
    xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, m_colormap, root, m_format.visual);
    xcb_create_window_value_list_t values{};
    values.background_pixel = 0;
    values.background_pixmap = XCB_BACK_PIXMAP_PARENT_RELATIVE;
    values.border_pixel = 0;
    values.event_mask = windowEvents;
    values.colormap = m_colormap;
    // Only windows of the parent's depth may show its background.
    const std::uint32_t background
        = m_format.depth == m_x.screen()->root_depth ? XCB_CW_BACK_PIXMAP : XCB_CW_BACK_PIXEL;
    xcb_create_window_aux(c, m_format.depth, m_window, root, 0, 0,
        static_cast<std::uint16_t>(m_slot.width()), static_cast<std::uint16_t>(m_slot.height()), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, m_format.visual,
        background | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, &values);
    xcb_create_gc(c, m_gc, m_window, 0, nullptr);
}

void TrayWindow::setProperties()
{
    // The same at each start: panels remember by it which items the user has hidden.
    constexpr QByteArrayView name("Brimwatch");
    constexpr QByteArrayView windowClass("brimwatch\0Brimwatch\0", 20);
    const auto setText = [this](xcb_atom_t property, xcb_atom_t type, QByteArrayView text) {
        xcb_change_property(m_x.connection(), XCB_PROP_MODE_REPLACE, m_window, property, type, 8,
            static_cast<std::uint32_t>(text.size()), text.data());
    };
    setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, windowClass);
    setText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, name);
    setText(m_x.atom(nameAtom), m_x.atom(utf8Atom), name);
    const std::array info{xembedVersion, xembedMapped};
    xcb_change_property(m_x.connection(), XCB_PROP_MODE_REPLACE, m_window, m_x.atom(xembedInfoAtom),
        m_x.atom(xembedInfoAtom), 32, info.size(), info.data());
}

void TrayWindow::writeSizeHints()
{
    const SizeHints hints{.flags = programMinimumSize,
        .minimumWidth = static_cast<std::uint32_t>(boundedWidth(m_askedWidth)),
        .minimumHeight = static_cast<std::uint32_t>(m_askedHeight)};
    xcb_change_property(m_x.connection(), XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NORMAL_HINTS,
        XCB_ATOM_WM_SIZE_HINTS, 32, sizeof hints / sizeof(std::uint32_t), &hints);
}

void TrayWindow::requestDock()
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = m_manager;
    message.type = m_x.atom(opcodeAtom);
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] = requestDockOpcode;
    message.data.data32[2] = m_window;
    xcb_send_event(m_x.connection(), 0, m_manager, XCB_EVENT_MASK_NO_EVENT,
        reinterpret_cast<const char *>(&message));
    m_x.flush();
}

bool TrayWindow::askForWidth(int width)
{
    if (!exists() || width == m_askedWidth)
        return false;
    m_askedWidth = width;
    writeSizeHints();
    // Panels look at the hints, at the request, or at both.
    const auto value = static_cast<std::uint32_t>(boundedWidth(width));
    xcb_configure_window(m_x.connection(), m_window, XCB_CONFIG_WINDOW_WIDTH, &value);
    m_x.flush();
    return true;
}

QList<std::uint32_t> TrayWindow::symbolColors()
{
    return m_x.cardinals(m_manager, colorsAtom);
}

QImage TrayWindow::readBehind(QSize size)
{
    // Without our drawing the parent's background shows and can be read.
    xcb_clear_area(m_x.connection(), 0, m_window, 0, 0, 0, 0);
    return readImage(m_x, m_window, m_format, size);
}

void TrayWindow::draw(const QImage &image)
{
    putImage(m_x, m_window, m_gc, m_format, image);
    m_x.flush();
}

std::optional<QRect> TrayWindow::place() const
{
    if (m_lost || !m_docked || !exists())
        return std::nullopt;
    xcb_connection_t *c = m_x.connection();
    const XcbPointer<xcb_translate_coordinates_reply_t> origin(xcb_translate_coordinates_reply(
        c, xcb_translate_coordinates(c, m_window, m_x.screen()->root, 0, 0), nullptr));
    if (!origin)
        return std::nullopt;
    return QRect(QPoint(origin->dst_x, origin->dst_y), m_slot);
}

void TrayWindow::handle(const xcb_generic_event_t *event)
{
    if (m_lost || !exists())
        return;
    // The topmost bit is set in what other programs send, as the window manager of GNOME does with
    // clicks.
    const int type = event->response_type & 0x7f;
    // The server alone knows of the end of a window and of its parent. Whoever says that they have
    // changed would leave a dead window in the tray.
    const bool isFromServer = type == event->response_type;
    if (!isFromServer && (type == XCB_DESTROY_NOTIFY || type == XCB_REPARENT_NOTIFY))
        return;
    switch (type) {
    case XCB_EXPOSE: {
        const auto *expose = reinterpret_cast<const xcb_expose_event_t *>(event);
        if (expose->window == m_window && expose->count == 0)
            Q_EMIT damaged();
        break;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto *configure = reinterpret_cast<const xcb_configure_notify_event_t *>(event);
        const QSize size(configure->width, configure->height);
        if (configure->window == m_window) {
            handleConfigure(size);
        } else if (configure->window == m_parent) {
            setParentSize(size);
        }
        break;
    }
    case XCB_REPARENT_NOTIFY: {
        const auto *reparent = reinterpret_cast<const xcb_reparent_notify_event_t *>(event);
        if (reparent->window == m_window)
            handleReparent(reparent->parent);
        break;
    }
    case XCB_DESTROY_NOTIFY: {
        const auto *destroy = reinterpret_cast<const xcb_destroy_notify_event_t *>(event);
        if (destroy->window == m_window)
            m_window = XCB_WINDOW_NONE;
        if (!exists() || destroy->window == m_manager)
            lose();
        break;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto *property = reinterpret_cast<const xcb_property_notify_event_t *>(event);
        if (property->window == m_manager && property->atom == m_x.atom(colorsAtom))
            Q_EMIT symbolColorsChanged();
        break;
    }
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
        handleButton(
            *reinterpret_cast<const xcb_button_press_event_t *>(event), type == XCB_BUTTON_PRESS);
        break;
    case XCB_ENTER_NOTIFY: {
        const auto *enter = reinterpret_cast<const xcb_enter_notify_event_t *>(event);
        // The end of somebody's grab over a resting pointer is no motion.
        if (enter->event == m_window && enter->mode == XCB_NOTIFY_MODE_NORMAL)
            Q_EMIT pointerMoved();
        break;
    }
    case XCB_MOTION_NOTIFY:
        if (reinterpret_cast<const xcb_motion_notify_event_t *>(event)->event == m_window)
            Q_EMIT pointerMoved();
        break;
    case XCB_LEAVE_NOTIFY:
        if (reinterpret_cast<const xcb_leave_notify_event_t *>(event)->event == m_window)
            Q_EMIT pointerLeft();
        break;
    default:
        break;
    }
}

void TrayWindow::handleButton(const xcb_button_press_event_t &event, bool isPress)
{
    if (event.event != m_window)
        return;
    if (isPress)
        Q_EMIT buttonPressed(event.detail);
    else
        Q_EMIT buttonReleased(
            event.detail, QPoint(event.event_x, event.event_y), QPoint(event.root_x, event.root_y));
}

void TrayWindow::handleConfigure(QSize size)
{
    Q_EMIT moved();
    // Whoever sends an event may write any size into it. No window is empty.
    if (size.isEmpty())
        return;
    m_size = size;
    updateSlot();
}

void TrayWindow::updateSlot()
{
    const QSize slot = m_parentSize.isValid() ? m_size.boundedTo(m_parentSize) : m_size;
    if (slot == m_slot)
        return;
    m_slot = slot;
    Q_EMIT resized();
    // XFCE scales what was asked for to its own height (seen with 4.18), so the label would stand
    // in too wide a slot. Other panels are never asked for the height that they gave: they would
    // not shrink below it.
    if (m_docked && m_slot.height() != m_askedHeight && keepsProportions()) {
        m_askedHeight = std::min(m_slot.height(), largestDrawing.height());
        writeSizeHints();
        m_x.flush();
    }
}

bool TrayWindow::keepsProportions() const
{
    const int skew = m_slot.width() * m_askedHeight - m_askedWidth * m_slot.height();
    return std::abs(skew) <= std::max(m_slot.height(), m_askedHeight);
}

void TrayWindow::handleReparent(xcb_window_t parent)
{
    if (parent == m_x.screen()->root) {
        // Out of a tray that is gone or does not want it: a bare window on the desktop is no item.
        if (m_docked)
            lose();
        return;
    }
    Q_EMIT reparented();
    if (!std::exchange(m_docked, true))
        Q_EMIT docked();
    followParent(parent);
}

void TrayWindow::followParent(xcb_window_t parent)
{
    m_parent = parent;
    // Before the size is asked for, so that no change is missed.
    m_x.selectInput(parent, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const XcbPointer<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
        m_x.connection(), xcb_get_geometry(m_x.connection(), parent), nullptr));
    setParentSize(geometry ? QSize(geometry->width, geometry->height) : QSize());
}

void TrayWindow::setParentSize(QSize size)
{
    // One pixel is what GTK's sockets have before they are laid out: it says nothing of the slot.
    m_parentSize = size.width() > 1 && size.height() > 1 ? size : QSize();
    updateSlot();
}

void TrayWindow::lose()
{
    if (std::exchange(m_lost, true))
        return;
    if (exists() && m_x.isValid()) {
        xcb_unmap_window(m_x.connection(), m_window);
        m_x.flush();
    }
    Q_EMIT lost();
}

} // namespace brimwatch::platform
