#include "fuzz/Target.h"

#include <QByteArray>
#include <cstddef>
#include <stdexcept>

namespace fuzz {
namespace {

// Broken input is traced; millions of lines would only keep the fuzzer waiting.
[[maybe_unused]] const bool kIsQuiet = qputenv("QT_LOGGING_RULES", "*=false");

}  // namespace

std::vector<Target>& targets() {
    static std::vector<Target> all;
    return all;
}

void require(bool isKept, const char* promise) {
    if (!isKept) throw std::logic_error(promise);
}

}  // namespace fuzz

/// What libFuzzer calls in a program of one target.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    fuzz::targets().front().run(QByteArrayView(data, qsizetype(size)));
    return 0;
}
