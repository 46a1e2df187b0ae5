#include "platform/linux/tray/sni_item.h"

#include "platform/linux/bus/exported_object.h"
#include "sni_adaptor.h"
#include "sni_menuless_adaptor.h"

#include <QTimer>

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto itemPath = "/StatusNotifierItem"_L1;

} // namespace

SniItem::SniItem(QDBusConnection bus, Menu menu, Texts texts, Draw draw, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_texts(std::move(texts))
    , m_draw(std::move(draw))
{
    registerSniTypes();
    if (menu == Menu::Yes)
        new SniAdaptor(this);
    else
        new SniMenulessAdaptor(this);
    bus::exportAdaptors(m_bus, itemPath, this);
}

SniItem::~SniItem()
{
    if (isOnBus())
        m_bus.unregisterObject(itemPath);
}

QString SniItem::menuPath()
{
    return itemPath + "/Menu"_L1;
}

bool SniItem::isOnBus() const
{
    return m_bus.objectRegisteredAt(itemPath) == this;
}

bool SniItem::update(Texts texts, bool iconChanged)
{
    const Texts before = std::exchange(m_texts, std::move(texts));
    bool newIcon = false;
    // What no host has asked for need not be drawn.
    if (iconChanged && !m_pixmaps.isEmpty()) {
        const SniPixmaps old = std::exchange(m_pixmaps, m_draw());
        newIcon = m_pixmaps != old;
    }
    if (!m_wasRead)
        return false;

    const bool newTitle = m_texts.title != before.title;
    const bool newToolTip = m_texts.toolTip != before.toolTip;
    const bool newLabel = m_texts.label != before.label || m_texts.labelGuide != before.labelGuide;
    if (newIcon)
        Q_EMIT NewIcon();
    if (newTitle)
        Q_EMIT NewTitle();
    if (newToolTip)
        Q_EMIT NewToolTip();
    if (newLabel)
        Q_EMIT XAyatanaNewLabel(m_texts.label, m_texts.labelGuide);
    return newIcon || newTitle || newToolTip || newLabel;
}

void SniItem::Activate(int x, int y)
{
    QTimer::singleShot(0, this, [this, x, y] { Q_EMIT activated(QPoint(x, y)); });
}

SniPixmaps SniItem::iconPixmap()
{
    m_wasRead = true;
    if (m_pixmaps.isEmpty())
        m_pixmaps = m_draw();
    return m_pixmaps;
}

SniToolTip SniItem::toolTip()
{
    return {.iconName = {}, .iconPixmaps = {}, .title = read(m_texts.toolTip), .text = {}};
}

QString SniItem::read(const QString &text)
{
    m_wasRead = true;
    return text;
}

} // namespace brimwatch::platform
