#pragma once

#include "model/color_token.h"

#include <QObject>
#include <QString>

namespace brimwatch::platform {

/// A colour; each component from 0 to 1.
struct Rgba {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const Rgba &) const = default;
};

/// How the user's desktop looks now. Follows its settings live.
class Appearance : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~Appearance() override;

    virtual bool isDark() const = 0;
    virtual Rgba color(model::ColorToken token) const = 0;
    /// The family of the interface font; empty when the desktop names none.
    virtual QString fontFamily() const = 0;
    /// How much larger than usual the user wants text, 1 for as usual, between 0.5 and 3.
    virtual double textScale() const = 0;
    /// Whether the user wants no animations.
    virtual bool reducesMotion() const = 0;
    /// Whether what is drawn in colours other than those of color() needs more contrast. Not on
    /// macOS, where the system draws the label.
    virtual bool raisesContrast() const { return false; }

Q_SIGNALS:
    /// Something of the above is different now.
    void changed();
};

} // namespace brimwatch::platform
