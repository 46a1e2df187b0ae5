// A small Objective-C runtime for tests on Linux x86-64: clang's -fobjc-runtime=macosx code
// generation (the one used for a Mac) on ELF, ARC, blocks, weak references, categories.
// Test support only. No exceptions, no +load/+initialize, no forwarding.
#pragma once
#include <cstddef>
extern "C" {
void *mini_alloc(void *cls); // what +alloc does
void mini_dispose(void *object); // what -dealloc of the root class does
void *mini_class_of(void *object);
bool mini_responds(void *object, const char *selectorName);
bool mini_is_kind(void *object, void *cls);
const char *mini_class_name(void *cls);
void mini_immortal(void *object); // never counted, never freed
long mini_live_objects(void);
long mini_retain_count(void *object);
extern void (*mini_on_dispose)(void *object);
void *objc_autoreleasePoolPush(void);
void objc_autoreleasePoolPop(void *);
}
