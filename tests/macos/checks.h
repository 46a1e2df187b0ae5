#pragma once

// Tests of the .mm files: no Qt, because those use none.

#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace brimwatch::test {

struct Sentence {
    const char *name;
    void (*body)();
};

/// All sentences of the program, in the order of their files.
std::vector<Sentence> &sentences();
void report(bool holds, const char *file, int line, const char *what);

struct Register {
    Register(const char *name, void (*body)()) { sentences().push_back({name, body}); }
};

inline bool near(double a, double b)
{
    return std::abs(a - b) < 1e-9;
}

} // namespace brimwatch::test

/// A test whose name is a sentence about behaviour.
#define BRIMWATCH_SENTENCE(name)                                                                   \
    static void name();                                                                            \
    static const brimwatch::test::Register register_##name(#name, name);                           \
    static void name()

#define CHECK(...) brimwatch::test::report((__VA_ARGS__), __FILE__, __LINE__, #__VA_ARGS__)
