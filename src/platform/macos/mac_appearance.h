#pragma once

#include "platform/appearance.h"
#include "platform/macos/native_appearance.h"
#include "platform/macos/native_label.h"

namespace brimwatch::platform {

/// The system's colour for a role.
NativeColor nativeColor(model::ColorToken token);

/// The system's look.
class MacAppearance final : public Appearance {
    Q_OBJECT

public:
    explicit MacAppearance(QObject *parent = nullptr);

    bool isDark() const override;
    Rgba color(model::ColorToken token) const override;
    /// Empty: Qt's default font is the system's.
    QString fontFamily() const override { return {}; }
    /// Always 1: the system has no text size for programs of their own making.
    double textScale() const override { return 1; }
    bool reducesMotion() const override;

private:
    NativeAppearance m_native;
};

} // namespace brimwatch::platform
