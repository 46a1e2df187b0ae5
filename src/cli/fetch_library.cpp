#include "cli/fetch_library.h"

#include <dlfcn.h>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

Result<FetchOutcome, QString> fetchOnce()
{
    // Not QLibrary: the loader looks along the run path of whoever calls it, and ours says where
    // the library is.
    void *library = ::dlopen(BRIMWATCH_FETCH_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    auto *fetch = library == nullptr ? nullptr
                                     : reinterpret_cast<decltype(&brimwatch_fetch_once)>(
                                           ::dlsym(library, "brimwatch_fetch_once"));
    if (fetch == nullptr) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the C library keeps it for each thread.
        return fail(u"the quota cannot be fetched: "_s + QString::fromLocal8Bit(::dlerror()));
    }
    FetchOutcome outcome;
    fetch(outcome);
    return outcome;
}

} // namespace brimwatch::cli
