#pragma once

#include "platform/linux/tray/host_detector.h"
#include "platform/linux/tray/presentation.h"
#include "platform/status_item.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QTimer>

#include <chrono>
#include <memory>

namespace brimwatch::platform {

class Appearance;
class LabelPainter;
class XConnection;
class XScale;

/// The item on the panel that is there, once. Keeps what it shows for the panel that comes next.
class PanelStatusItem final : public StatusItem {
    Q_OBJECT

public:
    PanelStatusItem(XConnection &x, QDBusConnection bus, const LabelPainter &painter,
        Appearance &appearance, const XScale &scale, QObject *parent = nullptr);
    /// With other knowledge of who runs which program.
    PanelStatusItem(XConnection &x, QDBusConnection bus, const LabelPainter &painter,
        Appearance &appearance, const XScale &scale, ExecutableOf executableOf,
        QObject *parent = nullptr);

    /// Always: what it is given now is shown by the panel that comes.
    bool hasButton() const override { return true; }
    void setLabel(const model::LabelComposition &label) override;
    void setDescription(const ItemDescription &description) override;
    std::optional<QRect> place() const override;

    /// Who shows the item.
    const Host &host() const { return m_detector.host(); }

Q_SIGNALS:
    /// A panel has taken the item. Comes again with each panel.
    void registered();

private:
    void changed();
    void update();
    void attach();
    void reattachLater();
    std::unique_ptr<Presentation> makePresentation();

    XConnection &m_x;
    QDBusConnection m_bus;
    const LabelPainter &m_painter;
    Appearance &m_appearance;
    const XScale &m_scale;
    HostDetector m_detector;
    std::unique_ptr<Presentation> m_presentation;
    PresentedItem m_item;
    PresentedItem m_shown; ///< What the presentation was given last.
    bool m_labelKnown = false;
    bool m_updatePending = false;
    // A panel that throws the item out is asked again, ever less often while it keeps doing so.
    static constexpr std::chrono::milliseconds firstRetry = std::chrono::seconds(1);
    std::chrono::milliseconds m_nextRetry = firstRetry;
    QTimer m_retry;
    QElapsedTimer m_attached;
};

} // namespace brimwatch::platform
