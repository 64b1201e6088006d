#include "platform/Clock.h"

namespace platform::clock {
namespace {

QDateTime& fixedMoment() {
    static QDateTime moment;
    return moment;
}

}  // namespace

QDateTime now() {
    return fixedMoment().isValid() ? fixedMoment() : QDateTime::currentDateTime();
}

void set(const QDateTime& moment) {
    fixedMoment() = moment;
}

}  // namespace platform::clock
