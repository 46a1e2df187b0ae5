// What desktops announce about themselves: XSETTINGS, kdeglobals, descriptions of fonts,
// os-release.
#include "fuzz.h"
#include "platform/linux/appearance/desktop_appearance.h"
#include "platform/linux/linux_app_information.h"
#include "platform/linux/x11/xsettings.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <array>

using namespace brimwatch;
using namespace brimwatch::platform;
using namespace Qt::Literals::StringLiterals;

namespace {

void xSettings(const QByteArray &bytes)
{
    const auto values = parseXSettings(bytes);
    fuzz::require(values.size() <= 1000, "there are at most as many settings as any desktop has");
    qsizetype texts = 0;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        texts += it.key().size();
        fuzz::require(it->typeId() == QMetaType::Int || it->typeId() == QMetaType::QString,
            "a setting is a number or a text");
        if (it->typeId() == QMetaType::QString)
            texts += it->toString().size();
    }
    fuzz::require(texts <= bytes.size(), "texts come from the property");
}

bool isWithin(const Rgba &color)
{
    // Not a number is out of range too.
    return std::ranges::all_of(std::to_array({color.red, color.green, color.blue, color.alpha}),
        [](double component) { return component >= 0 && component <= 1; });
}

void kdeGlobals(const QByteArray &bytes)
{
    static int count = 0;
    static QCoreApplication application(count, nullptr);
    static const QTemporaryDir folder;
    {
        QFile file(folder.filePath(u"kdeglobals"_s));
        fuzz::require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(),
            "there is a place to write");
    }
    const DesktopAppearance appearance(QDBusConnection(u"none"_s), nullptr, folder.path());
    fuzz::require(
        isWithin(appearance.color(model::ColorToken::Accent)), "a colour is within its bounds");
    fuzz::require(appearance.textScale() >= 0.5 && appearance.textScale() <= 3,
        "a scale is within its bounds");
    fuzz::require(appearance.fontFamily().size() <= bytes.size(), "a font comes from the file");
}

void fontDescription(const QString &text)
{
    const QString family = familyOfFontDescription(text);
    fuzz::require(family.size() <= text.size(), "a family is a part of its description");
}

void osRelease(const QByteArray &bytes)
{
    const QString name = prettyNameOf(bytes);
    fuzz::require(!name.isEmpty(), "a system has a name");
    fuzz::require(!name.contains(u'\n') && !name.contains(u'\r'), "a name is one line");
    fuzz::require(name.size() <= bytes.size() + 5, "a name comes from the file");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    // Letters, so that an input's first byte says to a reader what the rest is.
    const char kind = input.number<char>();
    const QByteArray rest = input.rest();
    if (kind == 'x')
        xSettings(rest);
    else if (kind == 'k')
        kdeGlobals(rest);
    else if (kind == 'f')
        fontDescription(QString::fromUtf8(rest));
    else if (kind == 'o')
        osRelease(rest);
    return 0;
}
