#include "platform/linux/popover/plasma_panels.h"

#include "core/read_file.h"

#include <QList>
#include <QStandardPaths>
#include <QString>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

/// How far Breeze, Plasma's own theme, has panels float; in device-independent pixels.
constexpr int gap = 8;

/// "[PlasmaViews][Panel 2]", and no group within it.
bool isGroupOfPanel(const QByteArray &line)
{
    return line.startsWith("[PlasmaViews][Panel ") && line.count('[') == 2;
}

} // namespace

PlasmaVersion plasmaVersion()
{
    const int version = qEnvironmentVariableIntValue("KDE_SESSION_VERSION");
    if (version == 5)
        return PlasmaVersion::Plasma5;
    return version > 5 ? PlasmaVersion::Plasma6 : PlasmaVersion::None;
}

QMargins gapOfFloatingPanels(const QByteArray &plasmashellrc)
{
    int panels = 0;
    int standing = 0;
    bool inPanel = false;
    for (const QByteArray &whole : plasmashellrc.split('\n')) {
        const QByteArray line = whole.trimmed();
        if (line.startsWith('[')) {
            inPanel = isGroupOfPanel(line);
            panels += inPanel ? 1 : 0;
        } else if (inPanel && line == "floating=0") {
            ++standing;
        }
    }
    // A panel of which nothing is said floats.
    const bool noneFloats = panels > 0 && standing >= panels;
    return noneFloats ? QMargins() : QMargins(gap, gap, gap, gap);
}

QMargins gapOfFloatingPanels()
{
    constexpr qint64 largest = 1024LL * 1024;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return gapOfFloatingPanels(
        readFile(folder + "/plasmashellrc"_L1, largest).value_or(QByteArray()));
}

} // namespace brimwatch::platform
