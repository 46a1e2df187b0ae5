#include "views/quota_popover_content.h"

#include "platform/popover.h"
#include "views/accessible_items.h"
#include "views/drawing/popover_shadow.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLoggingCategory>
#include <QMouseEvent>
#include <QQmlComponent>
#include <QQuickItem>

#include <optional>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace brimwatch::views {

namespace {

Q_LOGGING_CATEGORY(viewsLog, "brimwatch.views", QtInfoMsg)

// By their object names.
const QString dashboardList = u"groupList"_s;
const QString settingsList = u"settingsList"_s;

/// The first item with that object name among the visual children; null without one. findChild()
/// would miss items made by a Loader, which are not child objects of their parent item.
QQuickItem *itemIn(const QQuickItem &parent, const QString &name)
{
    const auto children = parent.childItems();
    for (QQuickItem *child : children) {
        if (child->objectName() == name)
            return child;
        if (QQuickItem *found = itemIn(*child, name))
            return found;
    }
    return nullptr;
}

bool isCommand(const QKeyEvent &event, Qt::Key key)
{
    return event.key() == key && event.modifiers() == Qt::ControlModifier;
}

std::optional<PopoverModel::ScrollStep> scrollStep(int key)
{
    using Step = PopoverModel::ScrollStep;
    switch (key) {
    case Qt::Key_Up:
        return Step::LineUp;
    case Qt::Key_Down:
        return Step::LineDown;
    case Qt::Key_PageUp:
        return Step::PageUp;
    case Qt::Key_PageDown:
        return Step::PageDown;
    case Qt::Key_Home:
        return Step::Start;
    case Qt::Key_End:
        return Step::End;
    default:
        return {};
    }
}

} // namespace

PopoverWindow::PopoverWindow(PopoverModel &model)
    : m_model(model)
{
}

void PopoverWindow::keyPressEvent(QKeyEvent *event)
{
    QQuickWindow::keyPressEvent(event);
    if (event->isAccepted())
        return;
    event->accept();
    if (const auto step = scrollStep(event->key()))
        Q_EMIT m_model.scrollRequested(*step);
    else if (event->isAutoRepeat())
        // Only scrolling repeats while a key is held.
        return;
    else if (isCommand(*event, Qt::Key_R))
        m_model.performRefresh();
    else if (isCommand(*event, Qt::Key_Comma))
        Q_EMIT m_model.settingsRequested();
    else if (isCommand(*event, Qt::Key_Q))
        m_model.quit();
    else if (event->matches(QKeySequence::Cancel) && m_model.showingSettings())
        Q_EMIT m_model.dashboardRequested();
    else if (event->matches(QKeySequence::Cancel))
        m_model.close();
    else
        event->ignore();
}

void PopoverWindow::mousePressEvent(QMouseEvent *event)
{
    if ((QRectF(QPointF(), size()) - m_shadow).contains(event->position()))
        QQuickWindow::mousePressEvent(event);
    else
        // Queued, since closing destroys the window on some platforms.
        QMetaObject::invokeMethod(&m_model, &PopoverModel::close, Qt::QueuedConnection);
}

QuotaPopoverContent::QuotaPopoverContent(const PopoverDependencies &dependencies)
    : m_state(dependencies.state)
    , m_theme(dependencies.appearance, dependencies.symbols)
    , m_model({.quotaService = dependencies.quotaService,
          .theme = m_theme,
          .opener = dependencies.opener,
          .terminate = dependencies.terminate,
          .close = dependencies.close})
    , m_settingsModel({.quotaService = dependencies.quotaService,
          .launchAtLogin = dependencies.launchAtLogin,
          .diagnostics = dependencies.diagnostics,
          .opener = dependencies.opener,
          .pasteboard = dependencies.pasteboard,
          .terminate = dependencies.terminate,
          .close = dependencies.close})
    , m_window(m_model)
{
    // For screen readers; no desktop shows it.
    m_window.setTitle(QGuiApplication::applicationDisplayName());
    QJSEngine::setObjectOwnership(&m_model, QJSEngine::CppOwnership);
    QJSEngine::setObjectOwnership(&m_settingsModel, QJSEngine::CppOwnership);
    QJSEngine::setObjectOwnership(&dependencies.quotaService, QJSEngine::CppOwnership);
    m_theme.attachTo(m_engine);
    m_engine.addImportPath(u"qrc:/qt/qml"_s);
    QObject::connect(&m_theme, &Theme::changed, &m_window, [this] { applyTheme(); });
    applyTheme();

    QQmlComponent component(&m_engine, QUrl(u"qrc:/qt/qml/Brimwatch/QuotaPopoverView.qml"_s));
    m_root.reset(qobject_cast<QQuickItem *>(
        component.createWithInitialProperties({{u"model"_s, QVariant::fromValue(&m_model)},
            {u"settingsModel"_s, QVariant::fromValue(&m_settingsModel)}})));
    if (!m_root) {
        qCCritical(viewsLog).noquote() << "The popover cannot be made:" << component.errorString();
        return;
    }
    m_root->setParentItem(m_window.contentItem());
    const auto refreshSettings = [this] {
        if (m_model.isShown() && m_model.showingSettings())
            m_settingsModel.refreshLaunchAtLogin();
    };
    QObject::connect(
        &m_model, &PopoverModel::showingSettingsChanged, &m_settingsModel, refreshSettings);
    QObject::connect(&m_model, &PopoverModel::isShownChanged, &m_settingsModel, refreshSettings);
    layOut();
    QObject::connect(&m_window, &QQuickWindow::widthChanged, m_root.get(), [this] { layOut(); });
    QObject::connect(&m_window, &QQuickWindow::heightChanged, m_root.get(), [this] { layOut(); });
    restore(*m_state);
}

QuotaPopoverContent::~QuotaPopoverContent()
{
    if (!m_root)
        return;
    m_state->showingSettings = m_model.showingSettings();
    const auto position = [this](const QString &list) {
        const auto *area = itemIn(*m_root, list);
        return area != nullptr ? area->property("contentY").toDouble() : 0;
    };
    m_state->dashboardPosition = position(dashboardList);
    m_state->settingsPosition = position(settingsList);
}

void QuotaPopoverContent::restore(const PopoverState &state)
{
    const auto scroll = [this](const QString &list, double position) {
        if (auto *area = itemIn(*m_root, list); area != nullptr && position > 0)
            area->setProperty("soughtPosition", position);
    };
    scroll(dashboardList, state.dashboardPosition);
    if (!state.showingSettings)
        return;
    Q_EMIT m_model.settingsRequested();
    scroll(settingsList, state.settingsPosition);
}

void QuotaPopoverContent::setShown(bool shown)
{
    m_model.setShown(shown);
    // At first no control has the focus. A popup that grabs the keyboard gets its keys, but not
    // always a focus event, so the view is focused here.
    if (shown)
        m_root->forceActiveFocus(Qt::PopupFocusReason);
}

void QuotaPopoverContent::showSettings()
{
    Q_EMIT m_model.settingsRequested();
}

QSize QuotaPopoverContent::size() const
{
    using platform::Popover;
    return (QSizeF(Popover::contentWidth, Popover::contentHeight) * m_theme.textScale()).toSize();
}

QMargins QuotaPopoverContent::shadow() const
{
    return m_window.shadow();
}

void QuotaPopoverContent::setTranslucent(bool translucent)
{
    const QMargins shadow = translucent ? PopoverShadow::extent : QMargins();
    if (m_window.shadow() == shadow)
        return;
    // A native window is opaque or translucent from its creation.
    m_window.destroy();
    QSurfaceFormat format = m_window.requestedFormat();
    format.setAlphaBufferSize(translucent ? 8 : -1);
    m_window.setFormat(format);
    m_window.setShadow(shadow);
    m_theme.setFloating(translucent);
    layOut();
}

void QuotaPopoverContent::applyTheme()
{
    m_window.setColor(m_theme.cornerRadius() > 0 ? QColor(Qt::transparent) : m_theme.background());
    const QSize wanted = size().grownBy(m_window.shadow());
    if (std::exchange(m_size, wanted) != wanted)
        m_window.resize(wanted);
}

/// The view fills the window but for the shadow.
void QuotaPopoverContent::layOut()
{
    const QRect frame = QRect(QPoint(), m_window.size()) - m_window.shadow();
    m_root->setPosition(frame.topLeft());
    m_root->setSize(frame.size());
}

} // namespace brimwatch::views

brimwatch::platform::PopoverContent *brimwatch_make_popover_content(
    const brimwatch::views::PopoverDependencies &dependencies)
{
    // Not OpenGL: for a window of this size the software renderer is faster, and it needs no
    // driver.
    const QString software = u"software"_s;
    if (QQuickWindow::sceneGraphBackend() != software)
        QQuickWindow::setSceneGraphBackend(software);
    brimwatch::views::makeItemsAccessible();
    auto content = std::make_unique<brimwatch::views::QuotaPopoverContent>(dependencies);
    return content->isComplete() ? content.release() : nullptr;
}
