#include "platform/linux/tray/panel_status_item.h"

#include "platform/linux/tray/sni_presentation.h"
#include "platform/linux/tray/xembed_presentation.h"

#include <QLoggingCategory>
#include <QPointer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace brimwatch::platform {

using namespace std::chrono_literals;

namespace {

Q_LOGGING_CATEGORY(itemLog, "brimwatch.tray", QtInfoMsg)

constexpr std::chrono::milliseconds slowestRetry = 1min;

} // namespace

PanelStatusItem::PanelStatusItem(XConnection &x, QDBusConnection bus, const LabelPainter &painter,
    Appearance &appearance, const XScale &scale, QObject *parent)
    : PanelStatusItem(x, std::move(bus), painter, appearance, scale, executableOfProcess, parent)
{
}

PanelStatusItem::PanelStatusItem(XConnection &x, QDBusConnection bus, const LabelPainter &painter,
    Appearance &appearance, const XScale &scale, ExecutableOf executableOf, QObject *parent)
    : StatusItem(parent)
    , m_x(x)
    , m_bus(std::move(bus))
    , m_painter(painter)
    , m_appearance(appearance)
    , m_scale(scale)
    , m_detector(x, m_bus, std::move(executableOf))
{
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &PanelStatusItem::attach);
    connect(&m_detector, &HostDetector::hostChanged, this, [this] {
        m_presentation.reset();
        m_retry.stop();
        m_nextRetry = firstRetry;
        attach();
    });
    m_detector.start();
}

void PanelStatusItem::setLabel(const model::LabelComposition &label)
{
    m_item.label = label;
    m_labelKnown = true;
    changed();
}

void PanelStatusItem::setDescription(const ItemDescription &description)
{
    m_item.description = description;
    changed();
}

std::optional<QRect> PanelStatusItem::place() const
{
    return m_presentation ? m_presentation->place() : std::nullopt;
}

void PanelStatusItem::changed()
{
    if (m_updatePending)
        return;
    // Label and description change together: the panel hears of both at once.
    m_updatePending = true;
    QMetaObject::invokeMethod(this, &PanelStatusItem::update, Qt::QueuedConnection);
}

void PanelStatusItem::update()
{
    m_updatePending = false;
    if (!m_presentation) {
        if (!m_retry.isActive())
            attach();
        return;
    }
    if (m_item == m_shown)
        return;
    m_shown = m_item;
    m_presentation->present(m_item);
}

void PanelStatusItem::attach()
{
    // An item that has nothing to show yet would be an empty place in the panel.
    if (m_presentation || !m_labelKnown)
        return;
    m_presentation = makePresentation();
    if (!m_presentation)
        return;
    connect(m_presentation.get(), &Presentation::registered, this, [this] {
        m_attached.start();
        Q_EMIT registered();
    });
    connect(m_presentation.get(), &Presentation::pressed, this, &PanelStatusItem::pressed);
    connect(m_presentation.get(), &Presentation::clicked, this, &PanelStatusItem::clicked);
    connect(m_presentation.get(), &Presentation::refreshRequested, this,
        &PanelStatusItem::refreshRequested);
    connect(m_presentation.get(), &Presentation::settingsRequested, this,
        &PanelStatusItem::settingsRequested);
    connect(
        m_presentation.get(), &Presentation::quitRequested, this, &PanelStatusItem::quitRequested);
    connect(m_presentation.get(), &Presentation::lost, this, &PanelStatusItem::reattachLater);
    m_shown = m_item;
    m_presentation->present(m_item);
}

void PanelStatusItem::reattachLater()
{
    using std::chrono::milliseconds;
    m_presentation->disconnect(this);
    // The presentation is calling this: it is deleted when it has returned, if no other has
    // replaced it.
    QMetaObject::invokeMethod(
        this,
        [this, gone = QPointer(m_presentation.get())] {
            if (gone == m_presentation.get())
                m_presentation.reset();
        },
        Qt::QueuedConnection);
    if (m_attached.isValid() && milliseconds(m_attached.elapsed()) >= slowestRetry)
        m_nextRetry = firstRetry;
    m_attached.invalidate();
    qCDebug(itemLog) << "the item has lost its place with" << host().name << "- asking again in"
                     << m_nextRetry.count() << "ms unless another host comes";
    m_retry.start(m_nextRetry);
    m_nextRetry = std::min(m_nextRetry * 2, slowestRetry);
}

std::unique_ptr<Presentation> PanelStatusItem::makePresentation()
{
    const auto embedded = [this](XembedForm form) {
        return std::make_unique<XembedPresentation>(
            form, m_x, host().trayManager, m_painter, m_appearance, m_scale);
    };
    const auto announced = [this](SniForm form) {
        return std::make_unique<SniPresentation>(form, m_bus, m_painter, m_appearance, nullptr);
    };
    switch (host().presentation) {
    case PresentationKind::XembedWide:
        return embedded(XembedForm::Wide);
    case PresentationKind::XembedBadge:
        return embedded(XembedForm::Badge);
    case PresentationKind::SniWide:
        return announced(SniForm::Wide);
    case PresentationKind::SniBadge:
        return announced(SniForm::Badge);
    case PresentationKind::SniPortable:
        return announced(SniForm::Portable);
    case PresentationKind::None:
        break;
    }
    return nullptr;
}

} // namespace brimwatch::platform
