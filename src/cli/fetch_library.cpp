#include "cli/fetch_library.h"

#include "core/shared_library.h"

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

Result<FetchOutcome, QString> fetchOnce()
{
    const auto fetch = loadFunction<decltype(brimwatch_fetch_once)>(
        BRIMWATCH_FETCH_LIBRARY, "brimwatch_fetch_once");
    if (!fetch)
        return fail(u"the quota cannot be fetched: "_s + fetch.error());
    FetchOutcome outcome;
    (*fetch)(outcome);
    return outcome;
}

} // namespace brimwatch::cli
