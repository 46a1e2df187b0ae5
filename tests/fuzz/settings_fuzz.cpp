// Whatever stands in the settings file: it is read to its end, what is written is read again, and
// the rest stays.
#include "fuzz.h"
#include "service/settings.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>

using namespace brimwatch;
using service::SettingsStore;
namespace settings = service::settings;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    fuzz::require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
        "there is a place to write");
}

/// The lines that do not set one of those keys.
QByteArrayList others(QByteArray content)
{
    // What stands before the file's first line, whichever that is.
    if (content.startsWith("\xef\xbb\xbf"))
        content.remove(0, 3);
    QByteArrayList result;
    const auto lines = content.split('\n');
    for (const auto &line : lines) {
        if (!line.contains(settings::lowQuotaThreshold.key)
            && !line.contains(settings::toolbarLabelStyle.key)
            && !line.contains(settings::showIconInMenuBar.key) && !line.trimmed().isEmpty())
            result.append(line);
    }
    return result;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int count = 0;
    static QCoreApplication application(count, nullptr);
    static const QTemporaryDir folder;
    static const QString path = folder.filePath(QStringLiteral("settings.ini"));

    fuzz::Input input(data, size);
    const bool writes = input.flag();
    const auto threshold = input.number<double>();
    const bool icon = input.flag();
    const QString style = input.text();
    const QByteArray content = input.rest();
    write(path, content);

    SettingsStore store(path);
    fuzz::require(std::isfinite(store.value(settings::refreshInterval))
            && std::isfinite(store.value(settings::lowQuotaThreshold)),
        "numbers are finite");
    const bool colors = store.value(settings::useColoredStatusIndicator);
    const double interval = store.value(settings::refreshInterval);
    store.value(settings::toolbarLabelStyle);
    if (!writes)
        return 0;

    store.setValue(settings::lowQuotaThreshold, threshold);
    store.setValue(settings::showIconInMenuBar, icon);
    store.setValue(settings::toolbarLabelStyle, style);
    store.flush();
    const SettingsStore again(path);
    fuzz::require(again.value(settings::lowQuotaThreshold)
                == (std::isfinite(threshold) ? threshold : settings::lowQuotaThreshold.defaultValue)
            && again.value(settings::showIconInMenuBar) == icon
            && again.value(settings::toolbarLabelStyle) == style,
        "what is written is read");
    fuzz::require(again.value(settings::useColoredStatusIndicator) == colors
            && again.value(settings::refreshInterval) == interval,
        "what is not written stays");
    const QByteArray written = contentOf(path);
    // A line that a backslash continues goes as a whole.
    if (!content.contains('\\')) {
        auto rest = others(written);
        if (!others(content).contains("[General]"))
            rest.removeOne("[General]");
        fuzz::require(rest == others(content), "the other lines stay as they are");
    }
    return 0;
}
