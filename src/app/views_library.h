#pragma once

#include "platform/popover_content.h"
#include "views/views_library.h"

namespace brimwatch::app {

/// A factory that loads the library of the views, which stays loaded, and has it make the popover's
/// content.
platform::PopoverContentFactory viewsFromLibrary(const views::PopoverDependencies &dependencies);

} // namespace brimwatch::app
