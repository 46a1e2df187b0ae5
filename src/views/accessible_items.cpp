#include "views/accessible_items.h"

#include <QAccessible>
#include <QQuickItem>
#include <QtQuick/private/qaccessiblequickitem_p.h>

#include <memory>

namespace brimwatch::views {

using namespace Qt::Literals::StringLiterals;

namespace {

/// What Qt Quick makes when it comes to the base class QQuickItem; null for other classes than
/// those of QML types, and for items without an accessible role or name.
QAccessibleInterface *accessibleItem(const QString &className, QObject *object)
{
    if (!className.contains("_QML"_L1))
        return nullptr;
    auto *item = qobject_cast<QQuickItem *>(object);
    if (item == nullptr)
        return nullptr;
    auto accessible = std::make_unique<QAccessibleQuickItem>(item);
    return accessible->isAccessible() ? accessible.release() : nullptr;
}

} // namespace

void makeItemsAccessible()
{
    // Deliberate: what is private to Qt may be another class in the next one. Some memory that
    // stays is better than an object that is too small.
    if (qstrcmp(qVersion(), QT_VERSION_STR) != 0)
        return;
    // A function that is installed already is not installed again.
    QAccessible::installFactory(accessibleItem);
}

} // namespace brimwatch::views
