#include "dbus/tray/fake_tray_manager.h"

#include "support/manager_announcement.h"

#include <QByteArray>

#include <xcb/xtest.h>

#include <array>
#include <cstring>
#include <utility>

namespace brimwatch::test {

using platform::XcbPointer;

namespace {

constexpr int fullDepth = 32;

std::uint32_t pixelOf(QColor color)
{
    return color.rgb();
}

} // namespace

FakeTrayManager::FakeTrayManager()
    : FakeTrayManager(Manners{})
{
}

FakeTrayManager::FakeTrayManager(Manners manners)
    : m_manners(std::move(manners))
{
    QObject::connect(&m_x, &platform::XConnection::eventReceived, &m_x,
        [this](const xcb_generic_event_t *event) { handle(event); });
    xcb_connection_t *c = m_x.connection();
    const xcb_screen_t *screen = m_x.screen();

    m_panel = xcb_generate_id(c);
    const std::array<std::uint32_t, 3> panelValues{pixelOf(m_manners.background), 1,
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
    constexpr std::uint16_t panelWidth = 900;
    constexpr std::uint16_t panelHeight = 400;
    xcb_create_window(c, XCB_COPY_FROM_PARENT, m_panel, screen->root, panelPlace.x(),
        panelPlace.y(), panelWidth, panelHeight, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
        XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
        panelValues.data());
    xcb_map_window(c, m_panel);

    m_selectionWindow = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, m_selectionWindow, screen->root, -10, -10, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const QByteArray name = m_manners.program.toUtf8();
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, m_selectionWindow, XCB_ATOM_WM_NAME,
        XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(name.size()), name.constData());
    if (m_manners.transparent || m_manners.visual) {
        const xcb_visualid_t visual = m_manners.visual.value_or(transparentVisual());
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, m_selectionWindow,
            m_x.atom("_NET_SYSTEM_TRAY_VISUAL"), XCB_ATOM_VISUALID, 32, 1, &visual);
    }
    if (m_manners.symbols)
        announceColors(QList<QColor>(4, *m_manners.symbols));

    const xcb_atom_t selection = m_x.atom("_NET_SYSTEM_TRAY_S0");
    xcb_set_selection_owner(c, m_selectionWindow, selection, XCB_CURRENT_TIME);
    announce();
}

void FakeTrayManager::announce()
{
    const xcb_atom_t selection = m_x.atom("_NET_SYSTEM_TRAY_S0");
    announceManager(m_x, selection, m_selectionWindow);
    // It stands when this returns.
    m_x.selectionOwner(selection);
}

void FakeTrayManager::handle(const xcb_generic_event_t *event)
{
    xcb_connection_t *c = m_x.connection();
    switch (event->response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE: {
        const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event);
        constexpr std::uint32_t dock = 0;
        if (message->type != m_x.atom("_NET_SYSTEM_TRAY_OPCODE") || message->data.data32[1] != dock)
            return;
        const xcb_window_t item = message->data.data32[2];
        if (!m_manners.docks)
            return;
        m_docked.append(item);
        if (m_manners.savesItems)
            xcb_change_save_set(c, XCB_SET_MODE_INSERT, item);
        if (m_manners.squares)
            m_square = createSquare();
        xcb_reparent_window(c, item, m_manners.squares ? m_square : m_panel, 0, 0);
        m_x.selectInput(item, XCB_EVENT_MASK_PROPERTY_CHANGE);
        giveSlot(hintedSize());
        xcb_map_window(c, item);
        m_x.flush();
        break;
    }
    case XCB_CONFIGURE_REQUEST: {
        const auto *request = reinterpret_cast<const xcb_configure_request_event_t *>(event);
        if ((request->value_mask & XCB_CONFIG_WINDOW_WIDTH) != 0)
            giveSlot({request->width, hintedSize().height()});
        break;
    }
    case XCB_PROPERTY_NOTIFY:
        if (reinterpret_cast<const xcb_property_notify_event_t *>(event)->atom
            == XCB_ATOM_WM_NORMAL_HINTS)
            giveSlot(hintedSize());
        break;
    default:
        break;
    }
}

xcb_window_t FakeTrayManager::createSquare()
{
    xcb_connection_t *c = m_x.connection();
    const xcb_window_t square = xcb_generate_id(c);
    const auto side = static_cast<std::uint16_t>(m_manners.height);
    const std::array<std::uint32_t, 2> values{
        pixelOf(m_manners.background), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, square, m_panel, 0, 0, side, side, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK,
        values.data());
    xcb_map_window(c, square);
    return square;
}

void FakeTrayManager::giveSlot(QSize asked)
{
    const int width = m_manners.proportional && asked.height() > 0
        ? asked.width() * m_manners.height / asked.height()
        : asked.width();
    setSlotSize(
        {std::min(width, m_manners.widest) / m_manners.unit * m_manners.unit, m_manners.height});
}

QSize FakeTrayManager::hintedSize()
{
    const QByteArray hints = m_x.property(m_docked.last(), XCB_ATOM_WM_NORMAL_HINTS);
    constexpr qsizetype minimumSizeAt = 5 * sizeof(std::uint32_t);
    std::array<std::uint32_t, 2> size{};
    if (hints.size() >= minimumSizeAt + qsizetype(sizeof size))
        std::memcpy(size.data(), hints.constData() + minimumSizeAt, sizeof size);
    return {static_cast<int>(size[0]), static_cast<int>(size[1])};
}

QRect FakeTrayManager::slot()
{
    const auto placeOf = [this](xcb_window_t window) {
        const XcbPointer<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
            m_x.connection(), xcb_get_geometry(m_x.connection(), window), nullptr));
        return geometry ? QRect(geometry->x, geometry->y, geometry->width, geometry->height)
                        : QRect();
    };
    QRect place = placeOf(m_docked.last());
    if (m_square != XCB_WINDOW_NONE)
        place &= QRect(QPoint(0, 0), placeOf(m_square).size());
    return place.isValid() ? place.translated(panelPlace) : QRect();
}

void FakeTrayManager::setSlotSize(QSize size)
{
    resize(m_docked.last(), size);
}

void FakeTrayManager::setSquareSize(QSize size)
{
    resize(m_square, size);
}

void FakeTrayManager::resize(xcb_window_t window, QSize size)
{
    const std::array values{
        static_cast<std::uint32_t>(size.width()), static_cast<std::uint32_t>(size.height())};
    xcb_configure_window(m_x.connection(), window,
        XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values.data());
    m_x.flush();
}

void FakeTrayManager::setBackground(QColor color)
{
    const std::uint32_t pixel = pixelOf(color);
    xcb_change_window_attributes(m_x.connection(), m_panel, XCB_CW_BACK_PIXEL, &pixel);
    xcb_clear_area(m_x.connection(), 0, m_panel, 0, 0, 0, 0);
    m_x.flush();
}

void FakeTrayManager::sendSize(QSize size)
{
    xcb_configure_notify_event_t event{};
    event.response_type = XCB_CONFIGURE_NOTIFY;
    event.event = m_docked.last();
    event.window = m_docked.last();
    event.width = static_cast<std::uint16_t>(size.width());
    event.height = static_cast<std::uint16_t>(size.height());
    xcb_send_event(m_x.connection(), 0, m_docked.last(), XCB_EVENT_MASK_NO_EVENT,
        reinterpret_cast<const char *>(&event));
    m_x.flush();
}

void FakeTrayManager::sendEnds()
{
    const xcb_window_t item = m_docked.last();
    const auto send = [&](const auto &event) {
        // What is sent has 32 bytes, whatever the event has.
        std::array<char, 32> bytes{};
        std::memcpy(bytes.data(), &event, sizeof event);
        xcb_send_event(m_x.connection(), 0, item, XCB_EVENT_MASK_NO_EVENT, bytes.data());
    };
    for (const xcb_window_t window : {item, m_selectionWindow}) {
        xcb_destroy_notify_event_t destroy{};
        destroy.response_type = XCB_DESTROY_NOTIFY;
        destroy.event = window;
        destroy.window = window;
        send(destroy);
    }
    xcb_reparent_notify_event_t reparent{};
    reparent.response_type = XCB_REPARENT_NOTIFY;
    reparent.event = item;
    reparent.window = item;
    reparent.parent = m_x.screen()->root;
    send(reparent);
    m_x.flush();
}

void FakeTrayManager::setSymbols(QColor color)
{
    setColors(QList<QColor>(4, color));
}

void FakeTrayManager::setColors(const QList<QColor> &colors)
{
    announceColors(colors);
    m_x.flush();
}

void FakeTrayManager::announceColors(const QList<QColor> &colors)
{
    QList<std::uint32_t> numbers;
    for (const QColor &color : colors) {
        const QRgba64 rgba = color.rgba64();
        numbers.append({rgba.red(), rgba.green(), rgba.blue()});
    }
    xcb_change_property(m_x.connection(), XCB_PROP_MODE_REPLACE, m_selectionWindow,
        m_x.atom("_NET_SYSTEM_TRAY_COLORS"), XCB_ATOM_CARDINAL, 32,
        static_cast<std::uint32_t>(numbers.size()), numbers.data());
}

void FakeTrayManager::throwOut()
{
    xcb_unmap_window(m_x.connection(), m_docked.last());
    xcb_reparent_window(m_x.connection(), m_docked.last(), m_x.screen()->root, 0, 0);
    m_x.flush();
}

QImage FakeTrayManager::picture()
{
    if (m_docked.isEmpty())
        return {};
    const QSize size = slot().size();
    xcb_generic_error_t *failure = nullptr;
    const XcbPointer<xcb_get_image_reply_t> reply(xcb_get_image_reply(m_x.connection(),
        xcb_get_image(m_x.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_docked.last(), 0, 0,
            static_cast<std::uint16_t>(size.width()), static_cast<std::uint16_t>(size.height()),
            ~0U),
        &failure));
    const XcbPointer<xcb_generic_error_t> notInSight(failure);
    if (!reply)
        return {};
    return QImage(xcb_get_image_data(reply.get()), size.width(), size.height(),
        reply->depth == fullDepth ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32)
        .copy();
}

void FakeTrayManager::damage()
{
    xcb_clear_area(m_x.connection(), 1, m_docked.last(), 0, 0, 0, 0);
    m_x.flush();
}

void FakeTrayManager::mark(QColor color)
{
    xcb_connection_t *c = m_x.connection();
    const xcb_gcontext_t gc = xcb_generate_id(c);
    const std::uint32_t pixel = pixelOf(color);
    xcb_create_gc(c, gc, m_docked.last(), XCB_GC_FOREGROUND, &pixel);
    const xcb_rectangle_t corner{0, 0, 2, 2};
    xcb_poly_fill_rectangle(c, m_docked.last(), gc, 1, &corner);
    xcb_free_gc(c, gc);
    m_x.flush();
}

xcb_visualid_t FakeTrayManager::transparentVisual() const
{
    for (auto depths = xcb_screen_allowed_depths_iterator(m_x.screen()); depths.rem > 0;
        xcb_depth_next(&depths)) {
        if (depths.data->depth == fullDepth)
            return xcb_depth_visuals_iterator(depths.data).data->visual_id;
    }
    return XCB_NONE;
}

Pointer::Pointer() = default;

void Pointer::moveTo(QPoint place)
{
    send(XCB_MOTION_NOTIFY, 0, place);
}

void Pointer::press(int button)
{
    send(XCB_BUTTON_PRESS, button, {});
}

void Pointer::release(int button)
{
    send(XCB_BUTTON_RELEASE, button, {});
}

void Pointer::send(std::uint8_t type, int detail, QPoint place)
{
    xcb_test_fake_input(m_x.connection(), type, static_cast<std::uint8_t>(detail), XCB_CURRENT_TIME,
        m_x.screen()->root, static_cast<std::int16_t>(place.x()),
        static_cast<std::int16_t>(place.y()), 0);
    // The server has seen to it when this returns.
    m_x.selectionOwner(XCB_ATOM_PRIMARY);
}

} // namespace brimwatch::test
