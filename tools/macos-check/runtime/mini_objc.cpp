#include "mini_objc.h"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#if !defined(__x86_64__)
#error "written for x86-64 only"
#endif

namespace {

using Imp = void (*)();
struct Method {
    const char *name;
    const char *types;
    Imp imp;
};
struct MethodList {
    uint32_t entsize, count;
    Method first[1];
};
struct Ivar {
    long *offset;
    const char *name, *type;
    uint32_t alignLog2, size;
};
struct IvarList {
    uint32_t entsize, count;
    Ivar first[1];
};
struct Ro {
    uint32_t flags, instanceStart, instanceSize, reserved;
    const uint8_t *layout;
    const char *name;
    MethodList *methods;
    void *protocols;
    IvarList *ivars;
    const uint8_t *weakLayout;
    void *properties;
};
struct Cls {
    Cls *isa, *super;
    void *cache, *vtable;
    Ro *ro;
};
struct Cat {
    const char *name;
    Cls *cls;
    MethodList *inst, *klass;
    void *protocols, *props, *classProps;
    uint32_t size;
};
struct Head {
    std::atomic<long> count;
    uint32_t dying;
    uint32_t magic;
};
constexpr uint32_t kMagic = 0x0b7ec7ed;

struct BlockDesc {
    unsigned long reserved, size;
    void (*copy)(void *, const void *);
    void (*dispose)(const void *);
};
struct Block {
    void *isa;
    std::atomic<int> flags;
    int reserved;
    void (*invoke)();
    BlockDesc *desc;
};
struct Byref {
    void *isa;
    Byref *forwarding;
    std::atomic<int> flags;
    int size;
    void (*keep)(Byref *, Byref *);
    void (*destroy)(Byref *);
};
enum {
    kNeedsFree = 1 << 24,
    kHasCopyDispose = 1 << 25,
    kIsGlobal = 1 << 28,
    kOne = 2,
    kCountMask = 0xfffe
};

std::recursive_mutex gLock;
struct Less {
    bool operator()(const char *a, const char *b) const { return std::strcmp(a, b) < 0; }
};
std::set<const char *, Less> &sels()
{
    static auto *s = new std::set<const char *, Less>;
    return *s;
}
std::unordered_map<Cls *, std::vector<MethodList *>> &extra()
{
    static auto *m = new std::unordered_map<Cls *, std::vector<MethodList *>>;
    return *m;
}
std::unordered_map<Cls *, uint32_t> &sizes()
{
    static auto *m = new std::unordered_map<Cls *, uint32_t>;
    return *m;
}
std::unordered_map<void *, std::vector<void **>> &weaks()
{
    static auto *m = new std::unordered_map<void *, std::vector<void **>>;
    return *m;
}
std::set<void *> &immortals()
{
    static auto *s = new std::set<void *>;
    return *s;
}
std::map<std::pair<Cls *, const char *>, Imp> &cache()
{
    static auto *m = new std::map<std::pair<Cls *, const char *>, Imp>;
    return *m;
}
std::atomic<long> gLive{0};

const char *intern(const char *s)
{
    auto [it, fresh] = sels().insert(s);
    (void)fresh;
    return *it;
}

Imp own(MethodList *l, const char *sel)
{
    if (l == nullptr)
        return nullptr;
    const uint32_t step = l->entsize & ~3u;
    for (uint32_t i = 0; i < l->count; ++i) {
        auto *m = reinterpret_cast<Method *>(reinterpret_cast<char *>(l->first) + size_t(i) * step);
        if (std::strcmp(m->name, sel) == 0)
            return m->imp;
    }
    return nullptr;
}
Imp ownOf(Cls *c, const char *sel)
{
    if (auto it = extra().find(c); it != extra().end())
        for (auto r = it->second.rbegin(); r != it->second.rend(); ++r)
            if (Imp i = own(*r, sel))
                return i;
    return own(c->ro->methods, sel);
}
Imp find(Cls *c, const char *sel)
{
    std::lock_guard lock(gLock);
    auto key = std::make_pair(c, sel);
    if (auto it = cache().find(key); it != cache().end())
        return it->second;
    Imp found = nullptr;
    for (Cls *k = c; k != nullptr && found == nullptr; k = k->super)
        found = ownOf(k, sel);
    cache()[key] = found;
    return found;
}
bool isBlockIsa(void *isa);
bool isClass(void *o)
{
    return ((*reinterpret_cast<Cls **>(o))->ro->flags & 1) != 0;
}

uint32_t realize(Cls *c)
{
    if (auto it = sizes().find(c); it != sizes().end())
        return it->second;
    uint32_t size = c->ro->instanceSize;
    if (c->super != nullptr && (c->ro->flags & 1) == 0) {
        const uint32_t base = realize(c->super);
        if (c->ro->instanceStart < base) { // the superclass has more ivars than this file saw
            const uint32_t diff = (base - c->ro->instanceStart + 15u) & ~15u;
            size += diff;
            if (IvarList *l = c->ro->ivars)
                for (uint32_t i = 0; i < l->count; ++i)
                    if (l->first[i].offset != nullptr)
                        *l->first[i].offset += diff;
        }
    }
    return sizes()[c] = size;
}

bool counted(void *o)
{
    return o != nullptr && !isClass(o) && !immortals().contains(*reinterpret_cast<void **>(o))
        && !immortals().contains(o);
}
Head *head(void *o)
{
    auto *h = reinterpret_cast<Head *>(o) - 1;
    if (h->magic != kMagic) {
        std::fprintf(stderr, "mini_objc: not a counted object: %p\n", o);
        std::abort();
    }
    return h;
}
thread_local std::vector<std::vector<void *>> *gPools;
std::vector<std::vector<void *>> &pools()
{
    if (!gPools)
        gPools = new std::vector<std::vector<void *>>(1);
    return *gPools;
}

} // namespace

extern "C" {
extern void *__start_objc_selrefs[] __attribute__((weak)),
    *__stop_objc_selrefs[] __attribute__((weak));
extern Cls *__start_objc_classlist[] __attribute__((weak)),
    *__stop_objc_classlist[] __attribute__((weak));
extern Cat *__start_objc_catlist[] __attribute__((weak)),
    *__stop_objc_catlist[] __attribute__((weak));
void *_objc_empty_cache;
void *_NSConcreteStackBlock[32], *_NSConcreteGlobalBlock[32], *_NSConcreteMallocBlock[32];
void (*mini_on_dispose)(void *);
void *objc_retain(void *);
void objc_release(void *);
void *_Block_copy(const void *);
void *objc_msgSend(void *, const char *, ...);

__attribute__((constructor(101))) static void mini_start()
{
    for (void **p = __start_objc_selrefs; p < __stop_objc_selrefs; ++p)
        *p = const_cast<char *>(intern(static_cast<const char *>(*p)));
    for (Cls **c = __start_objc_classlist; c < __stop_objc_classlist; ++c)
        realize(*c);
    for (Cat **c = __start_objc_catlist; c < __stop_objc_catlist; ++c) {
        if ((*c)->inst)
            extra()[(*c)->cls].push_back((*c)->inst);
        if ((*c)->klass)
            extra()[(*c)->cls->isa].push_back((*c)->klass);
    }
}

// ---- messages ------------------------------------------------------------------------
__attribute__((used)) Imp mini_lookup(void *self, const char *sel)
{
    void *isa = *static_cast<void **>(self);
    if (isBlockIsa(isa) && std::strcmp(sel, "copy") == 0)
        return reinterpret_cast<Imp>(+[](void *b, const char *) { return _Block_copy(b); });
    if (isBlockIsa(isa)) {
        std::fprintf(stderr, "mini_objc: message %s to a block\n", sel);
        std::abort();
    }
    Cls *c = static_cast<Cls *>(isa);
    if (Imp i = find(c, intern(sel)))
        return i;
    std::fprintf(stderr, "%c[%s %s]: unrecognized selector\n", (c->ro->flags & 1) ? '+' : '-',
        c->ro->name, sel);
    std::abort();
}
struct Super2 {
    void *receiver;
    Cls *current;
};
__attribute__((used)) Imp mini_lookup_super(Super2 *s, const char *sel)
{
    if (Imp i = find(s->current->super, intern(sel)))
        return i;
    std::fprintf(stderr, "[super %s] of %s: unrecognized selector\n", sel, s->current->ro->name);
    std::abort();
}
}
#define SAVE                                                                                       \
    "push %rbp\n mov %rsp,%rbp\n sub $0xc0,%rsp\n mov %rdi,0x80(%rsp)\n mov %rsi,0x88(%rsp)\n "    \
    "mov %rdx,0x90(%rsp)\n mov %rcx,0x98(%rsp)\n mov %r8,0xa0(%rsp)\n mov %r9,0xa8(%rsp)\n mov "   \
    "%rax,0xb0(%rsp)\n"                                                                            \
    " movaps %xmm0,(%rsp)\n movaps %xmm1,0x10(%rsp)\n movaps %xmm2,0x20(%rsp)\n movaps "           \
    "%xmm3,0x30(%rsp)\n movaps %xmm4,0x40(%rsp)\n movaps %xmm5,0x50(%rsp)\n movaps "               \
    "%xmm6,0x60(%rsp)\n movaps %xmm7,0x70(%rsp)\n"
#define RESTORE                                                                                    \
    " mov %rax,%r11\n mov 0x80(%rsp),%rdi\n mov 0x88(%rsp),%rsi\n mov 0x90(%rsp),%rdx\n mov "      \
    "0x98(%rsp),%rcx\n mov 0xa0(%rsp),%r8\n mov 0xa8(%rsp),%r9\n mov 0xb0(%rsp),%rax\n"            \
    " movaps (%rsp),%xmm0\n movaps 0x10(%rsp),%xmm1\n movaps 0x20(%rsp),%xmm2\n movaps "           \
    "0x30(%rsp),%xmm3\n movaps 0x40(%rsp),%xmm4\n movaps 0x50(%rsp),%xmm5\n movaps "               \
    "0x60(%rsp),%xmm6\n movaps 0x70(%rsp),%xmm7\n leave\n"
__asm__(".text\n"
        ".globl objc_msgSend\n.type objc_msgSend,@function\nobjc_msgSend:\n test %rdi,%rdi\n je "
        "1f\n" SAVE " call mini_lookup\n" RESTORE " jmp *%r11\n"
        "1: xor %eax,%eax\n xor %edx,%edx\n xorps %xmm0,%xmm0\n xorps %xmm1,%xmm1\n ret\n.size "
        "objc_msgSend,.-objc_msgSend\n"
        ".globl objc_msgSend_stret\n.type objc_msgSend_stret,@function\nobjc_msgSend_stret:\n test "
        "%rsi,%rsi\n je 1f\n" SAVE " mov %rsi,%rdi\n mov %rdx,%rsi\n call mini_lookup\n" RESTORE
        " jmp *%r11\n"
        "1: mov %rdi,%rax\n ret\n.size objc_msgSend_stret,.-objc_msgSend_stret\n"
        ".globl objc_msgSendSuper2\n.type objc_msgSendSuper2,@function\nobjc_msgSendSuper2:\n" SAVE
        " call mini_lookup_super\n" RESTORE
        " mov (%rdi),%rdi\n jmp *%r11\n.size objc_msgSendSuper2,.-objc_msgSendSuper2\n"
        ".globl objc_msgSendSuper2_stret\n.type "
        "objc_msgSendSuper2_stret,@function\nobjc_msgSendSuper2_stret:\n" SAVE
        " mov %rsi,%rdi\n mov %rdx,%rsi\n call mini_lookup_super\n" RESTORE
        " mov (%rsi),%rsi\n jmp *%r11\n.size objc_msgSendSuper2_stret,.-objc_msgSendSuper2_stret\n"
        ".section .note.GNU-stack,\"\",@progbits\n.text\n");

namespace {
bool isBlockIsa(void *isa)
{
    return isa == _NSConcreteStackBlock || isa == _NSConcreteGlobalBlock
        || isa == _NSConcreteMallocBlock;
}
bool isBlock(void *o)
{
    return o != nullptr && isBlockIsa(*static_cast<void **>(o));
}
} // namespace

extern "C" {

// ---- blocks --------------------------------------------------------------------------
void *_Block_copy(const void *p)
{
    if (p == nullptr)
        return nullptr;
    auto *b = static_cast<Block *>(const_cast<void *>(p));
    if (b->flags & kNeedsFree) {
        b->flags += kOne;
        return b;
    }
    if (b->flags & kIsGlobal)
        return b;
    auto *n = static_cast<Block *>(std::malloc(b->desc->size));
    std::memcpy(static_cast<void *>(n), b, b->desc->size);
    n->isa = _NSConcreteMallocBlock;
    n->flags = (b->flags & ~0xffff) | kNeedsFree | kOne;
    if (b->flags & kHasCopyDispose)
        b->desc->copy(n, b);
    return n;
}
void _Block_release(const void *p)
{
    auto *b = static_cast<Block *>(const_cast<void *>(p));
    if (b == nullptr || (b->flags & kIsGlobal) || !(b->flags & kNeedsFree))
        return;
    if ((b->flags.fetch_sub(kOne) & kCountMask) != kOne)
        return;
    if (b->flags & kHasCopyDispose)
        b->desc->dispose(b);
    std::free(b);
}
void _Block_object_assign(void *dst, const void *obj, int flags)
{
    void *o = const_cast<void *>(obj), **d = static_cast<void **>(dst);
    if (flags & 128) {
        *d = o;
        return;
    }
    if (flags & 8) {
        auto *s = static_cast<Byref *>(o)->forwarding;
        if (s->flags & kNeedsFree) {
            s->flags += kOne;
            *d = s;
            return;
        }
        auto *n = static_cast<Byref *>(std::malloc(size_t(s->size)));
        std::memcpy(static_cast<void *>(n), s, size_t(s->size));
        n->flags = s->flags | kNeedsFree | 2 * kOne; // one for the stack frame, one for the block
        n->forwarding = s->forwarding = n;
        if (s->flags & kHasCopyDispose)
            s->keep(n, s);
        *d = n;
        return;
    }
    *d = (flags & 7) == 7 ? _Block_copy(o) : objc_retain(o);
}
void _Block_object_dispose(const void *obj, int flags)
{
    void *o = const_cast<void *>(obj);
    if (flags & 128)
        return;
    if (flags & 8) {
        auto *b = static_cast<Byref *>(o)->forwarding;
        if (!(b->flags & kNeedsFree) || (b->flags.fetch_sub(kOne) & kCountMask) != kOne)
            return;
        if (b->flags & kHasCopyDispose)
            b->destroy(b);
        std::free(b);
        return;
    }
    if ((flags & 7) == 7)
        _Block_release(o);
    else
        objc_release(o);
}

// ---- objects -------------------------------------------------------------------------
void *mini_alloc(void *cls)
{
    auto *c = static_cast<Cls *>(cls);
    void *raw = std::calloc(1, sizeof(Head) + realize(c));
    auto *h = new (raw) Head{};
    h->count = 1;
    h->magic = kMagic;
    void *o = h + 1;
    *static_cast<void **>(o) = c;
    ++gLive;
    std::vector<Cls *> chain;
    for (Cls *k = c; k != nullptr; k = k->super)
        chain.push_back(k);
    for (auto k = chain.rbegin(); k != chain.rend(); ++k)
        if (Imp i = ownOf(*k, ".cxx_construct"))
            reinterpret_cast<void *(*)(void *, const char *)>(i)(o, ".cxx_construct");
    return o;
}
void mini_dispose(void *o)
{
    if (mini_on_dispose)
        mini_on_dispose(o);
    for (Cls *k = *static_cast<Cls **>(o); k != nullptr; k = k->super)
        if (Imp i = ownOf(k, ".cxx_destruct"))
            reinterpret_cast<void (*)(void *, const char *)>(i)(o, ".cxx_destruct");
    {
        std::lock_guard lock(gLock);
        if (auto it = weaks().find(o); it != weaks().end()) {
            for (void **w : it->second)
                *w = nullptr;
            weaks().erase(it);
        }
    }
    --gLive;
    Head *h = head(o);
    h->magic = 0;
    std::free(h);
}
void *mini_class_of(void *o)
{
    return *static_cast<void **>(o);
}
const char *mini_class_name(void *c)
{
    return static_cast<Cls *>(c)->ro->name;
}
bool mini_responds(void *o, const char *sel)
{
    return !isBlock(o) && find(*static_cast<Cls **>(o), intern(sel)) != nullptr;
}
bool mini_is_kind(void *o, void *cls)
{
    for (Cls *k = *static_cast<Cls **>(o); k != nullptr; k = k->super)
        if (k == cls)
            return true;
    return false;
}
void mini_immortal(void *o)
{
    std::lock_guard lock(gLock);
    immortals().insert(o);
}
long mini_live_objects(void)
{
    return gLive;
}
long mini_retain_count(void *o)
{
    return counted(o) ? head(o)->count.load() : -1;
}

void *objc_retain(void *o)
{
    if (o == nullptr)
        return o;
    if (isBlock(o))
        return _Block_copy(o);
    if (counted(o))
        ++head(o)->count;
    return o;
}
void objc_release(void *o)
{
    if (o == nullptr)
        return;
    if (isBlock(o)) {
        _Block_release(o);
        return;
    }
    if (!counted(o))
        return;
    Head *h = head(o);
    if (--h->count == 0 && h->dying == 0) {
        h->dying = 1;
        h->count = 1L << 40;
        reinterpret_cast<void (*)(void *, const char *)>(objc_msgSend)(o, intern("dealloc"));
    }
}
void *objc_autorelease(void *o)
{
    if (o)
        pools().back().push_back(o);
    return o;
}
void *objc_retainBlock(void *o)
{
    return _Block_copy(o);
}
void *objc_retainAutorelease(void *o)
{
    return objc_autorelease(objc_retain(o));
}
void *objc_autoreleaseReturnValue(void *o)
{
    return objc_autorelease(o);
}
void *objc_retainAutoreleaseReturnValue(void *o)
{
    return objc_autorelease(objc_retain(o));
}
void *objc_retainAutoreleasedReturnValue(void *o)
{
    return objc_retain(o);
}
void *objc_claimAutoreleasedReturnValue(void *o)
{
    return objc_retain(o);
}
void *objc_unsafeClaimAutoreleasedReturnValue(void *o)
{
    return o;
}
void *objc_autoreleasePoolPush(void)
{
    pools().emplace_back();
    return reinterpret_cast<void *>(pools().size());
}
void objc_autoreleasePoolPop(void *token)
{
    while (pools().size() >= reinterpret_cast<size_t>(token)) {
        while (!pools().back().empty()) {
            void *o = pools().back().back();
            pools().back().pop_back();
            objc_release(o);
        }
        pools().pop_back();
    }
    if (pools().empty())
        pools().emplace_back();
}
void objc_storeStrong(void **d, void *o)
{
    void *old = *d;
    if (old == o)
        return;
    objc_retain(o);
    *d = o;
    objc_release(old);
}

void *objc_initWeak(void **d, void *o)
{
    std::lock_guard lock(gLock);
    *d = nullptr;
    if (o == nullptr || isBlock(o))
        return *d = o;
    if (counted(o)) {
        if (head(o)->dying)
            return nullptr;
        weaks()[o].push_back(d);
    }
    return *d = o;
}
void objc_destroyWeak(void **d)
{
    std::lock_guard lock(gLock);
    if (auto it = weaks().find(*d); *d != nullptr && it != weaks().end()) {
        std::erase(it->second, d);
        if (it->second.empty())
            weaks().erase(it);
    }
    *d = nullptr;
}
void *objc_storeWeak(void **d, void *o)
{
    std::lock_guard lock(gLock);
    objc_destroyWeak(d);
    return objc_initWeak(d, o);
}
void *objc_loadWeakRetained(void **d)
{
    std::lock_guard lock(gLock);
    void *o = *d;
    if (o != nullptr && !isBlock(o) && counted(o) && head(o)->dying)
        return nullptr;
    return objc_retain(o);
}
void *objc_loadWeak(void **d)
{
    return objc_autorelease(objc_loadWeakRetained(d));
}
void objc_copyWeak(void **d, void **s)
{
    void *o = objc_loadWeakRetained(s);
    objc_initWeak(d, o);
    objc_release(o);
}
void objc_moveWeak(void **d, void **s)
{
    objc_copyWeak(d, s);
    objc_destroyWeak(s);
}

#define SEND(T, o, s, ...) reinterpret_cast<T>(objc_msgSend)(o, intern(s), ##__VA_ARGS__)
void *objc_alloc(void *c)
{
    return SEND(void *(*)(void *, const char *), c, "alloc");
}
void *objc_alloc_init(void *c)
{
    return SEND(void *(*)(void *, const char *), objc_alloc(c), "init");
}
void *objc_opt_new(void *c)
{
    return objc_alloc_init(c);
}
void *objc_opt_self(void *o)
{
    return o;
}
void *objc_opt_class(void *o)
{
    return o == nullptr ? nullptr : isClass(o) ? o : mini_class_of(o);
}
signed char objc_opt_isKindOfClass(void *o, void *c)
{
    return o != nullptr && mini_is_kind(o, c);
}
signed char objc_opt_respondsToSelector(void *o, const char *s)
{
    return o != nullptr && mini_responds(o, s);
}

// ---- properties ----------------------------------------------------------------------
void *objc_getProperty(void *self, const char *, long offset, signed char)
{
    return objc_autorelease(
        objc_retain(*reinterpret_cast<void **>(static_cast<char *>(self) + offset)));
}
static void *copyOf(void *v)
{
    return v == nullptr ? v
        : isBlock(v)    ? _Block_copy(v)
                        : SEND(void *(*)(void *, const char *), v, "copy");
}
static void setProp(void *self, long offset, void *v, bool copy)
{
    auto **slot = reinterpret_cast<void **>(static_cast<char *>(self) + offset);
    void *n = copy ? copyOf(v) : objc_retain(v), *old = *slot;
    *slot = n;
    objc_release(old);
}
void objc_setProperty(void *self, const char *, long offset, void *v, signed char, signed char copy)
{
    setProp(self, offset, v, copy);
}
void objc_setProperty_atomic(void *self, const char *, void *v, long offset)
{
    setProp(self, offset, v, false);
}
void objc_setProperty_nonatomic(void *self, const char *, void *v, long offset)
{
    setProp(self, offset, v, false);
}
void objc_setProperty_atomic_copy(void *self, const char *, void *v, long offset)
{
    setProp(self, offset, v, true);
}
void objc_setProperty_nonatomic_copy(void *self, const char *, void *v, long offset)
{
    setProp(self, offset, v, true);
}
void objc_copyStruct(void *d, const void *s, long n, signed char, signed char)
{
    std::memcpy(d, s, size_t(n));
}
void objc_enumerationMutation(void *)
{
    std::fprintf(stderr, "mini_objc: mutated while enumerated\n");
    std::abort();
}
int objc_sync_enter(void *)
{
    gLock.lock();
    return 0;
}
int objc_sync_exit(void *)
{
    gLock.unlock();
    return 0;
}
}
