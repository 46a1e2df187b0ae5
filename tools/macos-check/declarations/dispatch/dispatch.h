// Declared for checks on Linux: written by us from public documentation, not the system's header.
#pragma once

@protocol OS_dispatch_queue;
@class NSObject;
typedef NSObject<OS_dispatch_queue> *dispatch_queue_t;
typedef void (^dispatch_block_t)(void);

extern "C" {
extern struct dispatch_queue_s _dispatch_main_q;
static inline dispatch_queue_t _Nonnull dispatch_get_main_queue(void)
{
    return (__bridge dispatch_queue_t)(void *)&_dispatch_main_q;
}
void dispatch_async(dispatch_queue_t _Nonnull queue, dispatch_block_t _Nonnull block);
}
