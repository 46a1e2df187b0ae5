#include "platform/linux/popover/freed_memory.h"

#include <QTimer>

#include <malloc.h>

namespace brimwatch::platform {

void returnFreedMemory(QObject &context)
{
    // The allocator keeps what was freed in the middle of its heap until it is asked.
    QTimer::singleShot(0, &context, [] { ::malloc_trim(0); });
}

} // namespace brimwatch::platform
