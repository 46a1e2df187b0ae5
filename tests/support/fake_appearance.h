#pragma once

#include "platform/appearance.h"
#include "platform/linux/appearance/system_colors.h"

#include <QString>

namespace brimwatch::test {

/// A desktop that looks as the test says.
class FakeAppearance final : public platform::Appearance {
public:
    FakeAppearance() = default;
    explicit FakeAppearance(platform::Background color)
        : background(color)
    {
    }

    bool isDark() const override { return background == platform::Background::Dark; }
    platform::Rgba color(model::ColorToken token) const override
    {
        return platform::systemColor(token, background, contrast);
    }
    QString fontFamily() const override { return family; }
    double textScale() const override { return scale; }
    bool reducesMotion() const override { return still; }
    bool raisesContrast() const override { return contrast == platform::Contrast::Higher; }

    void setDark(bool dark)
    {
        background = dark ? platform::Background::Dark : platform::Background::Light;
        Q_EMIT changed();
    }
    void setContrast(platform::Contrast wanted)
    {
        contrast = wanted;
        Q_EMIT changed();
    }

    void setFamily(const QString &name)
    {
        family = name;
        Q_EMIT changed();
    }

    platform::Background background = platform::Background::Light;
    double scale = 1;
    platform::Contrast contrast = platform::Contrast::Usual;
    bool still = false;
    QString family;
};

} // namespace brimwatch::test
