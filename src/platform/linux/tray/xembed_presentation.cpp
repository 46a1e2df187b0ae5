#include "platform/linux/tray/xembed_presentation.h"

#include "platform/appearance.h"
#include "platform/linux/x11/x_scale.h"

#include <QLoggingCategory>
#include <QPainter>

#include <algorithm>

namespace brimwatch::platform {

namespace {

Q_LOGGING_CATEGORY(xembedLog, "brimwatch.tray", QtInfoMsg)

// Behind the label where the panel's own background cannot be seen: that of most bars.
constexpr QRgb fallbackBackground = 0xff2c2c2e;

bool isClick(std::uint8_t button)
{
    return button == XCB_BUTTON_INDEX_1 || button == XCB_BUTTON_INDEX_3;
}

} // namespace

XembedPresentation::XembedPresentation(XembedForm form, XConnection &x, xcb_window_t manager,
    const LabelPainter &painter, Appearance &appearance, const XScale &scale, QObject *parent)
    : Presentation(parent)
    , m_form(form)
    , m_painter(painter)
    , m_appearance(appearance)
    , m_scale(scale)
    , m_window(x, manager)
    , m_background(appearance)
    , m_toolTip(appearance, [this] { return place().value_or(QRect()); })
{
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleTime);
    connect(&m_settle, &QTimer::timeout, this, &XembedPresentation::fitSlot);
    connect(&m_window, &TrayWindow::docked, this, &XembedPresentation::registered);
    connect(&m_window, &TrayWindow::reparented, this, [this] {
        m_behind = {};
        m_settle.start();
    });
    connect(&m_window, &TrayWindow::moved, this, [this] { m_behind = {}; });
    connect(&m_window, &TrayWindow::resized, this, &XembedPresentation::resized);
    connect(&m_window, &TrayWindow::damaged, this, [this] {
        m_behind = {};
        m_drawn = {};
        draw();
    });
    connect(&m_window, &TrayWindow::symbolColorsChanged, this, [this] {
        readSymbolColors();
        draw();
    });
    connect(&m_window, &TrayWindow::buttonPressed, this, &XembedPresentation::buttonPressed);
    connect(&m_window, &TrayWindow::buttonReleased, this, &XembedPresentation::buttonReleased);
    connect(&m_window, &TrayWindow::pointerMoved, &m_toolTip, &ToolTipWindow::pointerMoved);
    connect(&m_window, &TrayWindow::pointerLeft, &m_toolTip, &ToolTipWindow::pointerLeft);
    connect(&m_window, &TrayWindow::lost, this, &XembedPresentation::lose);
    connect(&m_appearance, &Appearance::changed, this, &XembedPresentation::followTheme);
    connect(&m_scale, &XScale::changed, this, &XembedPresentation::adapt);
}

void XembedPresentation::present(const PresentedItem &item)
{
    if (m_lost || (m_window.exists() && item == m_item))
        return;
    const bool labelDiffers = item.label != m_item.label;
    m_item = item;
    const ItemDescription &description = item.description;
    m_toolTip.setLines(description.lines.isEmpty() && !description.title.isEmpty()
            ? QStringList(description.title)
            : description.lines);
    if (!m_window.exists()) {
        readSymbolColors();
        m_window.dock({neededWidth(), usualHeight()});
    } else if (labelDiffers) {
        // A bar that changes its colour need not expose us: it is looked at with each new label.
        m_behind = {};
        askForWidth();
        draw();
    }
}

void XembedPresentation::buttonPressed(std::uint8_t button)
{
    m_toolTip.pressed();
    if (!isClick(button))
        return;
    m_pressed = button;
    Q_EMIT pressed();
}

void XembedPresentation::buttonReleased(std::uint8_t button, QPoint local, QPoint global)
{
    if (m_pressed != button)
        return;
    m_pressed.reset();
    // Not the slot: GNOME Shell 48 sends clicks with the middle of the window as their place, also
    // where it shows less than half of it.
    if (QRect(QPoint(0, 0), m_window.size()).contains(local))
        Q_EMIT clicked({.bounds = place(), .pointer = global});
}

void XembedPresentation::resized()
{
    askForWidth();
    if (m_window.isDocked())
        m_settle.start();
    draw();
}

void XembedPresentation::lose()
{
    m_lost = true;
    m_settle.stop();
    m_toolTip.pressed();
    Q_EMIT lost();
}

LabelLook XembedPresentation::look() const
{
    const QSize slot = m_window.slot();
    const int height = m_window.isDocked() && !slot.isEmpty() ? slot.height() : usualHeight();
    return {.background = m_background.value(),
        .contrast = contrastOf(m_appearance),
        .fontFamily = m_appearance.fontFamily(),
        .devicePixelRatio = 1,
        .scale = m_scale.value(),
        .height = std::min(height, TrayWindow::largestDrawing.height())};
}

int XembedPresentation::usualHeight() const
{
    // Larger text alone makes no panel higher, and some grow with what is asked for.
    return TrayWindow::usualHeight * m_scale.windowFactor();
}

void XembedPresentation::readSymbolColors()
{
    m_background.setSymbolColors(m_window.symbolColors());
}

int XembedPresentation::neededWidth()
{
    const LabelLook current = look();
    const int width = m_form == XembedForm::Wide
        ? m_steadyWidth.of(m_item.label, m_painter, current)
        : current.height;
    // GTK counts in its own units: of what is no multiple of them, panels leave the rest out.
    const int unit = m_scale.windowFactor();
    return (width + unit - 1) / unit * unit;
}

void XembedPresentation::followTheme()
{
    m_background.followTheme();
    adapt();
}

void XembedPresentation::adapt()
{
    if (!m_window.exists())
        return;
    askForWidth();
    draw();
}

void XembedPresentation::askForWidth()
{
    if (m_window.askForWidth(neededWidth()) && m_window.isDocked())
        m_settle.start();
}

void XembedPresentation::readBehind()
{
    const QSize size = m_window.slot().boundedTo(TrayWindow::largestDrawing);
    if (m_window.isTransparent() || m_behind.size() == size)
        return;
    m_drawn = {};
    m_behind = m_window.readBehind(size);
    if (m_behind.isNull()) {
        m_behind = QImage(size, QImage::Format_ARGB32_Premultiplied);
        m_behind.fill(fallbackBackground);
    }
    m_background.setPixels(m_behind);
}

void XembedPresentation::fitSlot()
{
    const QSize slot = m_window.slot();
    const bool narrow = slot.width() < m_window.askedWidth();
    if (narrow && !m_narrow)
        qCDebug(xembedLog) << "the panel's slot is" << slot << "and the label"
                           << m_window.askedWidth() << "wide - drawing the badge";
    m_narrow = narrow;
    // Also when nothing differs: XFCE composes the slot itself and has been seen to leave out what
    // was drawn while it was still making room.
    m_drawn = {};
    draw();
}

QImage XembedPresentation::compose()
{
    const QSize size = m_window.slot().boundedTo(TrayWindow::largestDrawing);
    QImage drawing = m_behind;
    if (m_window.isTransparent()) {
        drawing = QImage(size, QImage::Format_ARGB32_Premultiplied);
        drawing.fill(Qt::transparent);
    }
    const int width = neededWidth();
    // A slot about to be widened shows the beginning meanwhile; one that stays narrow never shows a
    // truncated label.
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
    if (m_lost || !m_window.isDocked() || m_window.slot().isEmpty())
        return;
    readBehind();
    const QImage drawing = compose();
    if (drawing == m_drawn)
        return;
    m_drawn = drawing;
    m_window.draw(m_drawn);
}

} // namespace brimwatch::platform
