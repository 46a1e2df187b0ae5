#include "app/views_library.h"

#include <QLoggingCategory>

#include <dlfcn.h>

namespace brimwatch::app {

Q_LOGGING_CATEGORY(appLog, "brimwatch.app", QtInfoMsg)

platform::PopoverContentFactory viewsFromLibrary(const views::PopoverDependencies &dependencies)
{
    return [dependencies]() -> std::unique_ptr<platform::PopoverContent> {
        // Not QLibrary: the loader looks along the run path of whoever calls it, and ours says
        // where the library is.
        void *library = dlopen(BRIMWATCH_VIEWS_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        auto *make = library == nullptr
            ? nullptr
            : reinterpret_cast<decltype(&brimwatch_make_popover_content)>(
                  dlsym(library, "brimwatch_make_popover_content"));
        if (make == nullptr) {
            // NOLINTNEXTLINE(concurrency-mt-unsafe): the C library keeps it for each thread.
            qCCritical(appLog, "The popover cannot be shown: %s", dlerror());
            return nullptr;
        }
        return std::unique_ptr<platform::PopoverContent>(make(dependencies));
    };
}

} // namespace brimwatch::app
