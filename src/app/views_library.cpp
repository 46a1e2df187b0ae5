#include "app/views_library.h"

#include "core/shared_library.h"

#include <QLoggingCategory>

namespace brimwatch::app {

Q_LOGGING_CATEGORY(appLog, "brimwatch.app", QtInfoMsg)

platform::PopoverContentFactory viewsFromLibrary(const views::PopoverDependencies &dependencies)
{
    return [dependencies]() -> std::unique_ptr<platform::PopoverContent> {
        const auto make = loadFunction<decltype(brimwatch_make_popover_content)>(
            BRIMWATCH_VIEWS_LIBRARY, "brimwatch_make_popover_content");
        if (!make) {
            qCCritical(appLog, "The popover cannot be shown: %s", qPrintable(make.error()));
            return nullptr;
        }
        return std::unique_ptr<platform::PopoverContent>((*make)(dependencies));
    };
}

} // namespace brimwatch::app
