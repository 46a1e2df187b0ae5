#include "platform/linux/desktop/application_icon.h"

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

QImage applicationIcon(int side)
{
    QImage icon(side, side, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    QSvgRenderer(u":/brimwatch/brimwatch.svg"_s).render(&painter);
    return icon;
}

} // namespace brimwatch::platform
