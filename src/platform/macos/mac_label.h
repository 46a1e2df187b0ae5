#pragma once

#include "model/label_composition.h"
#include "platform/macos/native_label.h"

namespace brimwatch::platform {

/// The label in the types of the .mm files.
NativeLabel nativeLabel(const model::LabelComposition &label);

} // namespace brimwatch::platform
