#pragma once

#include "core/result.h"

#include <QString>

#include <dlfcn.h>

namespace brimwatch {

/// The function called `name` in a shared library, which is loaded if it is not yet and stays
/// loaded. The error is the dynamic loader's message.
///
/// Deliberate: a template, and not QLibrary. The loader searches the run path of the binary that
/// calls dlopen(), and only the run path of our programs names the library's folder.
template <typename Function>
Result<Function *, QString> loadFunction(const char *library, const char *name)
{
    void *handle = ::dlopen(library, RTLD_NOW | RTLD_LOCAL);
    void *symbol = handle == nullptr ? nullptr : ::dlsym(handle, name);
    if (symbol == nullptr) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): glibc keeps one message a thread.
        return fail(QString::fromLocal8Bit(::dlerror()));
    }
    return reinterpret_cast<Function *>(symbol);
}

} // namespace brimwatch
