#pragma once

#include "model/label_composition.h"
#include "platform/linux/tray/label_painter.h"

#include <QString>

namespace brimwatch::platform {

/// The width of a label's place in the panel: that of the widest label so far that differed in
/// nothing but its numbers, so that neither it nor its neighbours move with each refresh.
class SteadyWidth {
public:
    /// In device-independent pixels, at least what `painter` needs for the label.
    int of(
        const model::LabelComposition &label, const LabelPainter &painter, const LabelLook &look);

private:
    QString m_shape; ///< The label's text without its numbers.
    LabelLook m_look;
    int m_widest = 0;
};

} // namespace brimwatch::platform
