#include "platform/termdev/DeviceStatus.h"

#include <utility>

namespace platform::termdev {
namespace {

std::function<void()>& observer() {
    static std::function<void()> function;
    return function;
}

}  // namespace

void setStatusObserver(std::function<void()> function) {
    observer() = std::move(function);
}

void statusChanged() {
    if (observer()) observer()();
}

}  // namespace platform::termdev
