#include "platform/linux/tray/tool_tip_window.h"

#include "platform/appearance.h"
#include "platform/linux/popover/popover_place.h"
#include "platform/linux/x11/native_geometry.h"
#include "platform/qt_color.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int fontSize = 12;
constexpr QMargins margins(9, 6, 9, 6);
constexpr int gap = 4; // Between the item and the tooltip.
constexpr double widest = 640; // Of a text in usual size. What is longer is cut in its middle.

} // namespace

class ToolTipWindow::Window final : public QRasterWindow {
public:
    explicit Window(const Appearance &appearance)
        : m_appearance(appearance)
    {
        // Clicks and motion go to what lies under it.
        setFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput
            | Qt::WindowDoesNotAcceptFocus);
    }

    void setLines(const QStringList &lines)
    {
        m_lines = lines;
        const QFontMetrics metrics(font());
        int width = 0;
        for (const QString &line : lines)
            width = std::max(width, metrics.horizontalAdvance(line));
        const int most = static_cast<int>(std::lround(widest * m_appearance.textScale()));
        const QSize text(std::min(width, most), metrics.height() * static_cast<int>(lines.size()));
        resize(text.grownBy(margins));
        update();
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        Q_UNUSED(event)
        QPainter painter(this);
        const QRect all(QPoint(0, 0), size());
        painter.fillRect(all, toColor(m_appearance.color(model::ColorToken::WindowBackground)));
        painter.setPen(toColor(m_appearance.color(model::ColorToken::Separator)));
        painter.drawRect(all.adjusted(0, 0, -1, -1));
        painter.setFont(font());
        painter.setPen(toColor(m_appearance.color(model::ColorToken::Label)));
        const QFontMetrics metrics(font());
        QRect line(all.marginsRemoved(margins).topLeft(),
            QSize(all.marginsRemoved(margins).width(), metrics.height()));
        for (const QString &text : std::as_const(m_lines)) {
            painter.drawText(line, Qt::AlignVCenter | Qt::TextSingleLine,
                metrics.elidedText(text, Qt::ElideMiddle, line.width()));
            line.translate(0, metrics.height());
        }
    }

private:
    QFont font() const
    {
        QFont font;
        if (const QString family = m_appearance.fontFamily(); !family.isEmpty())
            font.setFamily(family);
        font.setPixelSize(static_cast<int>(std::lround(fontSize * m_appearance.textScale())));
        return font;
    }

    const Appearance &m_appearance;
    QStringList m_lines;
};

ToolTipWindow::ToolTipWindow(
    Appearance &appearance, std::function<QRect()> itemPlace, QObject *parent)
    : QObject(parent)
    , m_appearance(appearance)
    , m_itemPlace(std::move(itemPlace))
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(restTime);
    connect(&m_rest, &QTimer::timeout, this, &ToolTipWindow::show);
    connect(&m_appearance, &Appearance::changed, this, [this] {
        if (isShown())
            place();
    });
}

ToolTipWindow::~ToolTipWindow() = default;

void ToolTipWindow::setLines(const QStringList &lines)
{
    if (lines == m_lines)
        return;
    m_lines = lines;
    if (!isShown())
        return;
    if (m_lines.isEmpty())
        hide();
    else
        place();
}

bool ToolTipWindow::isShown() const
{
    return m_window && m_window->isVisible();
}

void ToolTipWindow::pointerMoved()
{
    // Qt knows the places of windows on the screen only on X11.
    if (!m_pressed && !isShown() && QGuiApplication::platformName() == "xcb"_L1)
        m_rest.start();
}

void ToolTipWindow::pointerLeft()
{
    m_pressed = false;
    hide();
}

void ToolTipWindow::pressed()
{
    m_pressed = true;
    hide();
}

void ToolTipWindow::show()
{
    if (m_lines.isEmpty())
        return;
    if (!m_window)
        m_window = std::make_unique<Window>(m_appearance);
    place();
    m_window->show();
}

void ToolTipWindow::hide()
{
    m_rest.stop();
    if (m_window)
        m_window->hide();
}

void ToolTipWindow::place()
{
    const QRect native = m_itemPlace();
    QScreen *screen = screenAtNative(native.center());
    if (screen == nullptr)
        return;
    m_window->setScreen(screen);
    m_window->setLines(m_lines);
    const QRect item = fromNative(native, screen).adjusted(0, -gap, 0, gap);
    m_window->setGeometry(
        popoverPlace(item, m_window->size(), screen->geometry(), screen->availableGeometry()));
}

} // namespace brimwatch::platform
