#include "fuzz/Target.h"

#include <QByteArray>
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

int choose(QByteArrayView* input, int choices) {
    if (input->isEmpty()) return 0;
    const int choice = uchar(input->front()) % choices;
    *input = input->sliced(1);
    return choice;
}

}  // namespace fuzz
