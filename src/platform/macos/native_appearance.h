#pragma once

#include "platform/macos/native_label.h"

#include <functional>
#include <memory>

namespace brimwatch::platform {

/// Each component from 0 to 1, in sRGB.
struct NativeRgba {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const NativeRgba &) const = default;
};

/// How the program's windows look now. Main thread only.
class NativeAppearance {
public:
    /// `changed` is called on the main thread when anything below may be different: light or dark,
    /// the system's colours, the user's wishes about motion and contrast.
    explicit NativeAppearance(std::function<void()> changed);
    ~NativeAppearance();
    NativeAppearance(const NativeAppearance &) = delete;
    NativeAppearance &operator=(const NativeAppearance &) = delete;
    NativeAppearance(NativeAppearance &&) = delete;
    NativeAppearance &operator=(NativeAppearance &&) = delete;

    bool isDark() const;
    /// The colour as it is drawn now. Opaque black for one that the system cannot express in sRGB.
    NativeRgba color(NativeColor color) const;
    /// Whether the user wants no animations.
    bool reducesMotion() const;

private:
    struct Objects;
    std::unique_ptr<Objects> m_objects;
};

} // namespace brimwatch::platform
