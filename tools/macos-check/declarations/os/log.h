// Declared for checks on Linux: written by us from public documentation, not the system's header.
// The format string goes through clang's own checker of os_log formats, as it does on a Mac.
#pragma once
#include <stdint.h>
@protocol OS_os_log;
@class NSObject;
typedef NSObject<OS_os_log> *os_log_t;
typedef enum : uint8_t {
    OS_LOG_TYPE_DEFAULT = 0x00,
    OS_LOG_TYPE_INFO = 0x01,
    OS_LOG_TYPE_DEBUG = 0x02,
    OS_LOG_TYPE_ERROR = 0x10,
    OS_LOG_TYPE_FAULT = 0x11
} os_log_type_t;
extern "C" {
extern struct mach_header_min __dso_handle;
// The caller owns what it gets.
__attribute__((ns_returns_retained)) os_log_t _Nonnull os_log_create(
    const char *_Nonnull subsystem, const char *_Nonnull category);
bool os_log_type_enabled(os_log_t _Nonnull log, os_log_type_t type);
void _os_log_impl(void *_Nonnull dso, os_log_t _Nonnull log, os_log_type_t type,
    const char *_Nonnull format, uint8_t *_Nonnull buf, uint32_t size);
}
#define os_log_with_type(LOG, TYPE, FMT, ...)                                                      \
    do {                                                                                           \
        os_log_t macdecl_l = (LOG);                                                                \
        os_log_type_t macdecl_t = (TYPE);                                                          \
        if (os_log_type_enabled(macdecl_l, macdecl_t)) {                                           \
            __attribute__((uninitialized, aligned(16))) uint8_t                                    \
                macdecl_b[__builtin_os_log_format_buffer_size(FMT, ##__VA_ARGS__)];                \
            _os_log_impl((void *)&__dso_handle, macdecl_l, macdecl_t, FMT,                         \
                (uint8_t *)__builtin_os_log_format(macdecl_b, FMT, ##__VA_ARGS__),                 \
                (uint32_t)sizeof(macdecl_b));                                                      \
        }                                                                                          \
    } while (0)
