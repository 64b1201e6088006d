#pragma once

#include <QByteArrayView>
#include <vector>

/// Targets of the fuzzer. Each is a file of one function that takes any bytes and throws when the code under
/// it does not keep its word. Under libFuzzer it is a program of its own; in an ordinary build all of them
/// are run on the corpus by one test.
namespace fuzz {

struct Target {
    const char* name;  ///< That of its file and of its folder of the corpus.
    void (*run)(QByteArrayView input);
};

/// The targets that are linked into this program.
std::vector<Target>& targets();

struct Registered {
    Registered(const char* name, void (*run)(QByteArrayView)) { targets().push_back({name, run}); }
};

/// Throws std::logic_error with `promise` when it is broken.
void require(bool isKept, const char* promise);

}  // namespace fuzz

#define FUZZ_TARGET(name, input)                          \
    static void run(QByteArrayView input);                \
    static const fuzz::Registered registered(#name, run); \
    static void run(QByteArrayView input)
