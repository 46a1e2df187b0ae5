#include "platform/linux/tray/xembed_presentation.h"

#include "platform/appearance.h"
#include "platform/linux/tray/tool_tip_window.h"
#include "platform/linux/x11/x_connection.h"

#include <QColor>
#include <QLoggingCategory>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace brimwatch::platform {

namespace {

Q_LOGGING_CATEGORY(xembedLog, "brimwatch.tray", QtInfoMsg)

// No panel is higher; a slot that is gets the label in its top left corner.
constexpr QSize largestDrawing(4096, 512);
// The height asked for. Panels give their own.
constexpr int usualHeight = 22;
// Behind the label where the panel's own background cannot be seen: that of most bars.
constexpr QRgb fallbackBackground = 0xff2c2c2e;

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

constexpr std::array windowEvents{XCB_EVENT_MASK_EXPOSURE, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
    XCB_EVENT_MASK_BUTTON_PRESS, XCB_EVENT_MASK_BUTTON_RELEASE, XCB_EVENT_MASK_ENTER_WINDOW,
    XCB_EVENT_MASK_LEAVE_WINDOW, XCB_EVENT_MASK_POINTER_MOTION};

/// How bright a colour looks, 0 to 1 (Rec. 709 weights).
double brightness(double red, double green, double blue)
{
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
}

double brightness(const QImage &image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            sum += brightness(color.redF(), color.greenF(), color.blueF());
        }
    }
    return sum / std::max(1, image.width() * image.height());
}

Background backgroundOf(const Appearance &appearance)
{
    return appearance.isDark() ? Background::Dark : Background::Light;
}

bool isClick(std::uint8_t button)
{
    return button == XCB_BUTTON_INDEX_1 || button == XCB_BUTTON_INDEX_3;
}

} // namespace

XembedPresentation::XembedPresentation(XembedForm form, XConnection &x, xcb_window_t manager,
    const LabelPainter &painter, Appearance &appearance, QObject *parent)
    : Presentation(parent)
    , m_form(form)
    , m_x(x)
    , m_manager(manager)
    , m_painter(painter)
    , m_appearance(appearance)
    , m_hover(new ToolTipWindow(appearance, [this] { return place().value_or(QRect()); }, this))
{
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleMilliseconds);
    connect(&m_settle, &QTimer::timeout, this, &XembedPresentation::fitSlot);
    connect(&m_x, &XConnection::eventReceived, this, &XembedPresentation::handle);
    connect(&m_x, &XConnection::closed, this, &XembedPresentation::lose);
    connect(&m_appearance, &Appearance::changed, this, &XembedPresentation::followTheme);
}

XembedPresentation::~XembedPresentation()
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

void XembedPresentation::present(const PresentedItem &item)
{
    if (m_lost || (m_window != XCB_WINDOW_NONE && item == m_item))
        return;
    const bool labelDiffers = item.label != m_item.label;
    m_item = item;
    const ItemDescription &description = item.description;
    m_hover->setLines(description.lines.isEmpty() && !description.title.isEmpty()
            ? QStringList(description.title)
            : description.lines);
    if (m_window == XCB_WINDOW_NONE) {
        createWindow();
        return;
    }
    if (labelDiffers) {
        askForWidth();
        draw();
    }
}

void XembedPresentation::createWindow()
{
    m_x.prefetchAtoms({colorsAtom, visualAtom, opcodeAtom, xembedInfoAtom, nameAtom, utf8Atom});
    if (!m_x.isValid())
        return;
    m_x.selectInput(m_manager, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    std::optional<XPixelFormat> format;
    if (const auto visual = m_x.cardinals(m_manager, visualAtom); !visual.isEmpty())
        format = pixelFormat(m_x, visual.first());
    if (!format)
        format = pixelFormat(m_x, m_x.screen()->root_visual);
    if (!format) {
        qCDebug(xembedLog) << "the screen has no visual that we can draw for - no item";
        return;
    }
    m_format = *format;
    readPanelColors();

    xcb_connection_t *c = m_x.connection();
    const xcb_window_t root = m_x.screen()->root;
    m_window = xcb_generate_id(c);
    m_colormap = xcb_generate_id(c);
    m_gc = xcb_generate_id(c);
    xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, m_colormap, root, m_format.visual);

    std::uint32_t events = 0;
    for (const auto event : windowEvents)
        events |= event;
    xcb_create_window_value_list_t values{};
    values.background_pixel = 0;
    values.background_pixmap = XCB_BACK_PIXMAP_PARENT_RELATIVE;
    values.border_pixel = 0;
    values.event_mask = events;
    values.colormap = m_colormap;
    // Only windows of the parent's depth may show its background through.
    const std::uint32_t background
        = m_format.depth == m_x.screen()->root_depth ? XCB_CW_BACK_PIXMAP : XCB_CW_BACK_PIXEL;
    m_askedWidth = neededWidth();
    m_askedHeight = usualHeight;
    m_slot = {std::clamp(m_askedWidth, 1, largestDrawing.width()), m_askedHeight};
    xcb_create_window_aux(c, m_format.depth, m_window, root, 0, 0,
        static_cast<std::uint16_t>(m_slot.width()), static_cast<std::uint16_t>(m_slot.height()), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, m_format.visual,
        background | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, &values);
    xcb_create_gc(c, m_gc, m_window, 0, nullptr);

    // The same at each start: panels remember by it which items the user has hidden.
    constexpr QByteArrayView name("Brimwatch");
    constexpr QByteArrayView windowClass("brimwatch\0Brimwatch\0", 20);
    const auto setText = [this, c](xcb_atom_t property, xcb_atom_t type, QByteArrayView text) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, m_window, property, type, 8,
            static_cast<std::uint32_t>(text.size()), text.data());
    };
    setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, windowClass);
    setText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, name);
    setText(m_x.atom(nameAtom), m_x.atom(utf8Atom), name);
    writeSizeHints();
    const std::array info{xembedVersion, xembedMapped};
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, m_window, m_x.atom(xembedInfoAtom),
        m_x.atom(xembedInfoAtom), 32, info.size(), info.data());
    requestDock();
}

void XembedPresentation::requestDock()
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

void XembedPresentation::handle(const xcb_generic_event_t *event)
{
    if (m_lost || m_window == XCB_WINDOW_NONE)
        return;
    // The topmost bit is set in what other programs send, as the window manager of GNOME does with
    // clicks.
    switch (event->response_type & 0x7f) {
    case XCB_EXPOSE: {
        const auto *expose = reinterpret_cast<const xcb_expose_event_t *>(event);
        if (expose->window == m_window && expose->count == 0) {
            m_behind = {};
            m_drawn = {};
            draw();
        }
        break;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto *configure = reinterpret_cast<const xcb_configure_notify_event_t *>(event);
        if (configure->window == m_window)
            resized({configure->width, configure->height});
        break;
    }
    case XCB_REPARENT_NOTIFY: {
        const auto *reparent = reinterpret_cast<const xcb_reparent_notify_event_t *>(event);
        if (reparent->window == m_window)
            reparented(reparent->parent);
        break;
    }
    case XCB_DESTROY_NOTIFY: {
        const auto *destroy = reinterpret_cast<const xcb_destroy_notify_event_t *>(event);
        if (destroy->window == m_window) {
            m_window = XCB_WINDOW_NONE;
            lose();
        } else if (destroy->window == m_manager) {
            lose();
        }
        break;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto *property = reinterpret_cast<const xcb_property_notify_event_t *>(event);
        if (property->window == m_manager && property->atom == m_x.atom(colorsAtom)) {
            readPanelColors();
            draw();
        }
        break;
    }
    case XCB_BUTTON_PRESS: {
        const auto *press = reinterpret_cast<const xcb_button_press_event_t *>(event);
        if (press->event != m_window)
            break;
        m_hover->pressed();
        if (isClick(press->detail)) {
            m_pressed = press->detail;
            Q_EMIT pressed();
        }
        break;
    }
    case XCB_BUTTON_RELEASE: {
        const auto *release = reinterpret_cast<const xcb_button_release_event_t *>(event);
        if (release->event == m_window)
            buttonReleased(*release);
        break;
    }
    case XCB_ENTER_NOTIFY: {
        const auto *enter = reinterpret_cast<const xcb_enter_notify_event_t *>(event);
        // The end of somebody's grab over a resting pointer is no reason to show a text.
        if (enter->event == m_window && enter->mode == XCB_NOTIFY_MODE_NORMAL)
            m_hover->pointerMoved();
        break;
    }
    case XCB_MOTION_NOTIFY:
        if (reinterpret_cast<const xcb_motion_notify_event_t *>(event)->event == m_window)
            m_hover->pointerMoved();
        break;
    case XCB_LEAVE_NOTIFY:
        if (reinterpret_cast<const xcb_leave_notify_event_t *>(event)->event == m_window)
            m_hover->pointerLeft();
        break;
    default:
        break;
    }
}

void XembedPresentation::buttonReleased(const xcb_button_release_event_t &release)
{
    if (m_pressed != release.detail)
        return;
    m_pressed.reset();
    // Releases come to the window of the press, wherever the pointer is by then.
    const auto bounds = place();
    const QPoint pointer(release.root_x, release.root_y);
    if (!QRect(QPoint(0, 0), m_slot).contains(QPoint(release.event_x, release.event_y)))
        return;
    Q_EMIT clicked({.bounds = bounds, .pointer = pointer});
}

void XembedPresentation::resized(QSize size)
{
    m_behind = {};
    if (size == m_slot)
        return;
    const bool heightDiffers = size.height() != m_slot.height();
    m_slot = size;
    if (heightDiffers)
        askForWidth();
    // XFCE scales what was asked for to its own height (seen with 4.18), so the label would stand
    // in too wide a slot. Other panels never hear of their height: they would not shrink below it.
    if (m_docked && m_slot.height() != m_askedHeight && keepsProportions()) {
        m_askedHeight = std::min(m_slot.height(), largestDrawing.height());
        writeSizeHints();
        m_x.flush();
    }
    if (m_docked)
        m_settle.start();
    draw();
}

void XembedPresentation::reparented(xcb_window_t parent)
{
    if (parent == m_x.screen()->root) {
        // Out of a tray that is gone or does not want it: a bare window on the desktop is no item.
        if (m_docked)
            lose();
        return;
    }
    m_behind = {};
    m_settle.start();
    if (m_docked)
        return;
    m_docked = true;
    Q_EMIT registered();
}

void XembedPresentation::lose()
{
    if (m_lost)
        return;
    m_lost = true;
    m_settle.stop();
    m_hover->pressed();
    if (m_window != XCB_WINDOW_NONE && m_x.isValid()) {
        xcb_unmap_window(m_x.connection(), m_window);
        m_x.flush();
    }
    Q_EMIT lost();
}

LabelLook XembedPresentation::look() const
{
    const int height = m_docked && !m_slot.isEmpty() ? m_slot.height() : usualHeight;
    return {.background = m_panelBackground.value_or(m_seenBackground),
        .fontFamily = m_appearance.fontFamily(),
        .devicePixelRatio = 1,
        .height = std::min(height, largestDrawing.height())};
}

void XembedPresentation::readPanelColors()
{
    // Red, green and blue of the panel's own symbols, each to 65535; what follows is for errors and
    // such.
    const auto symbols = m_x.cardinals(m_manager, colorsAtom);
    // What GNOME Shell's tray (seen with 43) begins with: when it is set up before the shell has
    // read its theme, it goes on to tell these, which are nobody's.
    static const QList<std::uint32_t> unread{0, 0, 0, 65535, 0, 0, 65535, 65535, 0, 0, 65535, 0};
    if (symbols.size() < 3 || symbols == unread) {
        m_panelBackground.reset();
        m_panelFollowsTheme = false;
        return;
    }
    constexpr double largest = 65535;
    const double bright
        = brightness(symbols[0] / largest, symbols[1] / largest, symbols[2] / largest);
    m_panelBackground = bright > 0.5 ? Background::Dark : Background::Light;
    m_panelFollowsTheme = m_panelBackground == backgroundOf(m_appearance);
}

int XembedPresentation::neededWidth()
{
    const LabelLook current = look();
    return m_form == XembedForm::Wide ? m_steadyWidth.of(m_item.label, m_painter, current)
                                      : current.height;
}

void XembedPresentation::followTheme()
{
    // XFCE (seen with 4.18) tells its colours once and then turns dark or light with the theme. A
    // panel that was of another kind than the theme stays as it is.
    if (m_panelFollowsTheme)
        m_panelBackground = backgroundOf(m_appearance);
    if (m_window == XCB_WINDOW_NONE)
        return;
    askForWidth();
    draw();
}

void XembedPresentation::askForWidth()
{
    const int width = neededWidth();
    if (width == m_askedWidth)
        return;
    m_askedWidth = width;
    writeSizeHints();
    // Panels look at the hints, at the request, or at both.
    const auto value = static_cast<std::uint32_t>(std::clamp(width, 1, largestDrawing.width()));
    xcb_configure_window(m_x.connection(), m_window, XCB_CONFIG_WINDOW_WIDTH, &value);
    m_x.flush();
    if (m_docked)
        m_settle.start();
}

bool XembedPresentation::keepsProportions() const
{
    const int skew = m_slot.width() * m_askedHeight - m_askedWidth * m_slot.height();
    return std::abs(skew) <= std::max(m_slot.height(), m_askedHeight);
}

void XembedPresentation::writeSizeHints()
{
    const SizeHints hints{.flags = programMinimumSize,
        .minimumWidth
        = static_cast<std::uint32_t>(std::clamp(m_askedWidth, 1, largestDrawing.width())),
        .minimumHeight = static_cast<std::uint32_t>(m_askedHeight)};
    xcb_change_property(m_x.connection(), XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NORMAL_HINTS,
        XCB_ATOM_WM_SIZE_HINTS, 32, sizeof hints / sizeof(std::uint32_t), &hints);
}

void XembedPresentation::readBehind()
{
    const QSize size = m_slot.boundedTo(largestDrawing);
    if (m_format.isTransparent() || m_behind.size() == size)
        return;
    // Our own drawing off, the parent's background shows through and can be read.
    xcb_clear_area(m_x.connection(), 0, m_window, 0, 0, 0, 0);
    m_drawn = {};
    m_behind = readImage(m_x, m_window, m_format, size);
    if (m_behind.isNull()) {
        m_behind = QImage(size, QImage::Format_ARGB32_Premultiplied);
        m_behind.fill(fallbackBackground);
    }
    m_seenBackground = brightness(m_behind) > 0.5 ? Background::Light : Background::Dark;
}

void XembedPresentation::fitSlot()
{
    const bool narrow = m_slot.width() < m_askedWidth;
    if (narrow && !m_narrow)
        qCDebug(xembedLog) << "the panel's slot is" << m_slot << "and the label" << m_askedWidth
                           << "wide - drawing the badge";
    m_narrow = narrow;
    // Also when nothing differs: XFCE composes the slot itself and has been seen to leave out what
    // was drawn while it was still making room.
    m_drawn = {};
    draw();
}

QImage XembedPresentation::compose()
{
    const QSize size = m_slot.boundedTo(largestDrawing);
    QImage drawing = m_behind;
    if (m_format.isTransparent()) {
        drawing = QImage(size, QImage::Format_ARGB32_Premultiplied);
        drawing.fill(Qt::transparent);
    }
    const int width = neededWidth();
    // A slot about to be widened shows the beginning meanwhile; one that stays narrow never shows a
    // label cut off.
    const bool asBadge = m_form == XembedForm::Badge || (m_narrow && width > size.width());
    const QImage content = asBadge
        ? m_painter.squareImage(m_item.label, look(), std::min(size.width(), size.height()))
        : m_painter.image(m_item.label, look());
    QPainter painter(&drawing);
    painter.drawImage(std::max(0, (size.width() - (asBadge ? content.width() : width)) / 2),
        (size.height() - content.height()) / 2, content);
    return drawing;
}

void XembedPresentation::draw()
{
    if (m_lost || !m_docked || m_slot.isEmpty())
        return;
    readBehind();
    const QImage drawing = compose();
    if (drawing == m_drawn)
        return;
    m_drawn = drawing;
    putImage(m_x, m_window, m_gc, m_format, m_drawn);
    m_x.flush();
}

std::optional<QRect> XembedPresentation::place() const
{
    if (m_lost || !m_docked || m_window == XCB_WINDOW_NONE)
        return std::nullopt;
    xcb_connection_t *c = m_x.connection();
    const XcbPointer<xcb_translate_coordinates_reply_t> origin(xcb_translate_coordinates_reply(
        c, xcb_translate_coordinates(c, m_window, m_x.screen()->root, 0, 0), nullptr));
    if (!origin)
        return std::nullopt;
    return QRect(QPoint(origin->dst_x, origin->dst_y), m_slot);
}

} // namespace brimwatch::platform
