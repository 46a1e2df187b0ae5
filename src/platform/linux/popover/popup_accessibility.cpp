#include "platform/linux/popover/popup_accessibility.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QGuiApplication>
#include <QWindow>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

QList<QAccessibleInterface *> visibleWindows()
{
    QList<QAccessibleInterface *> windows;
    const auto all = QGuiApplication::topLevelWindows();
    for (const QWindow *window : all) {
        if (!window->isVisible())
            continue;
        if (QAccessibleInterface *root = window->accessibleRoot())
            windows.append(root);
    }
    return windows;
}

class Application final : public QAccessibleApplication {
public:
    int childCount() const override { return static_cast<int>(visibleWindows().size()); }
    QAccessibleInterface *child(int index) const override
    {
        return visibleWindows().value(index, nullptr);
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return static_cast<int>(visibleWindows().indexOf(child));
    }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? QGuiApplication::applicationDisplayName() : QString();
    }
};

/// Qt calls it for each class of an object, the most derived one first.
QAccessibleInterface *makeApplication(const QString &className, QObject *object)
{
    if (object != QCoreApplication::instance() || className != "QGuiApplication"_L1)
        return nullptr;
    // QAccessible's cache of interfaces takes ownership.
    return new Application;
}

} // namespace

void showPopupsToScreenReaders()
{
    QAccessible::installFactory(makeApplication);
}

} // namespace brimwatch::platform
