// Runs the sentences of all files on the fakes, each in a fresh world, and checks afterwards that
// nothing of what it made is left.
#include "checks.h"
#include "fakes/fake_appkit.h"
#include "runtime/mini_objc.h"

namespace brimwatch::test {

static int failures = 0;
static int checks = 0;

std::vector<Sentence> &sentences()
{
    static std::vector<Sentence> all;
    return all;
}

void report(bool holds, const char *file, int line, const char *what)
{
    ++checks;
    if (holds)
        return;
    ++failures;
    std::printf("%s:%d: does not hold: %s\n", file, line, what);
}

static void expectNone(const char *name, long count, const char *what)
{
    ++checks;
    if (count == 0)
        return;
    ++failures;
    std::printf("%s: %ld %s\n", name, count, what);
}

static void run(const Sentence &sentence)
{
    fake::reset();
    const int before = failures;
    @autoreleasepool {
        sentence.body();
        fake::pump();
    }
    for (const auto &objection : fake::world().objections) {
        ++failures;
        std::printf("%s: the system objects: %s\n", sentence.name, objection.c_str());
    }
    expectNone(sentence.name, fake::statusItemsInBar(), "items left in the menu bar");
    expectNone(sentence.name, fake::statusItem() != nil, "status item outlives its owner");
    expectNone(sentence.name, fake::popover() != nil, "popover outlives its owner");
    expectNone(sentence.name, fake::panel() != nil, "panel outlives its owner");
    expectNone(sentence.name, fake::observers(), "observers left");
    expectNone(sentence.name, fake::notificationDelegate() != nil, "notification delegate left");
    std::printf("%s %s\n", failures == before ? "ok  " : "FAIL", sentence.name);
    std::fflush(stdout);
}

} // namespace brimwatch::test

int main()
{
    using namespace brimwatch::test;
    // The second run of a sentence makes no more static objects: what is alive after it and was not
    // before is a leak.
    for (const auto &sentence : sentences()) {
        run(sentence);
        fake::reset();
        const long before = mini_live_objects();
        run(sentence);
        fake::reset();
        expectNone(sentence.name, mini_live_objects() - before, "objects leaked");
    }
    std::printf("%zu sentences, %d checks, %d failed\n", sentences().size(), checks, failures);
    return failures == 0 && !sentences().empty() ? 0 : 1;
}
