#pragma once

#include <QtGlobal>

#include <sys/resource.h>

#include <csignal>

namespace brimwatch::test {

/// While it lives, this process can write no byte into a file, as on a full disk.
class FullDisk {
public:
    FullDisk()
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit nothing{.rlim_cur = 0, .rlim_max = m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &nothing);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    // Without the signal a write ends with an error.
    void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
    rlimit m_before = {};
};

} // namespace brimwatch::test
