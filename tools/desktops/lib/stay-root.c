// Preloaded into sway, which refuses to start as somebody who can become root: in a container or a
// chroot there may be nobody else to run it as, and no user namespace to have. Nothing is gained by
// it; the process has the rights that it had. What sway starts is left alone.
#include <errno.h>
#include <stdlib.h>
#include <sys/types.h>

int setuid(uid_t user);
int setgid(gid_t group);

__attribute__((constructor)) static void not_for_children(void) { unsetenv("LD_PRELOAD"); }

int setuid(uid_t user)
{
    (void)user;
    errno = EPERM;
    return -1;
}

int setgid(gid_t group)
{
    (void)group;
    errno = EPERM;
    return -1;
}
