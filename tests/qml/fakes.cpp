#include "qml/fakes.h"

namespace brimwatch::test {

bool FakeOpener::openAntigravity()
{
    started += installed ? 1 : 0;
    return installed;
}

} // namespace brimwatch::test
