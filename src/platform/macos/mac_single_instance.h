#pragma once

#include <QLockFile>
#include <QString>

namespace brimwatch::platform {

/// Whether this process is the user's one Brimwatch. The system starts a bundle only once, but a
/// program started by its path as often as one likes; a lock file tells them apart.
class MacSingleInstance {
public:
    /// The lock lies in `folder`, which is made.
    explicit MacSingleInstance(const QString &folder);

    /// False only when another process holds the lock. From the first answer of true on it is ours.
    bool claim();
    /// Has the one that holds it open its popover.
    static void askOther();

private:
    QLockFile m_lock;
};

} // namespace brimwatch::platform
