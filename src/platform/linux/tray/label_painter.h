#pragma once

#include "model/label_composition.h"
#include "platform/linux/appearance/system_colors.h"

#include <QImage>
#include <QSize>
#include <QString>

namespace brimwatch::platform {

class SymbolSource;

/// What a label is drawn for.
struct LabelLook {
    Background background = Background::Dark;
    Contrast contrast = Contrast::Usual;
    QString fontFamily = {}; ///< Empty: Qt's default.
    double devicePixelRatio = 1;
    /// Device-independent pixels for a point of the design: above 1 where nothing else scales, as
    /// in the windows of X11.
    double scale = 1;
    int height = 22; ///< In device-independent pixels; text and symbols shrink with a height that
                     ///< is too small for them at that scale.

    bool operator==(const LabelLook &) const = default;
};

/// Draws label compositions. All digits have the same advance, so that the width of a label does
/// not change with its numbers.
class LabelPainter {
public:
    explicit LabelPainter(const SymbolSource &symbols);

    /// In device-independent pixels; the height is the look's.
    QSize size(const model::LabelComposition &label, const LabelLook &look) const;
    /// On a transparent background, in premultiplied ARGB, size() × devicePixelRatio.
    QImage image(const model::LabelComposition &label, const LabelLook &look) const;
    /// The composition's badge in a square of `side`, for slots too narrow for the label: its
    /// numbers, or the composition's image, or the sparkle when it has neither.
    QImage squareImage(const model::LabelComposition &label, const LabelLook &look, int side) const;

private:
    const SymbolSource &m_symbols;
};

} // namespace brimwatch::platform
