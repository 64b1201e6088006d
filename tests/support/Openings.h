#pragma once

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <QFile>

namespace test {

/// Counts how often a file is opened.
class Openings {
  public:
    explicit Openings(const QString& path) : events_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        EXPECT_GE(::inotify_add_watch(events_, QFile::encodeName(path).constData(), IN_OPEN), 0);
    }
    ~Openings() { ::close(events_); }
    Openings(const Openings&) = delete;
    Openings& operator=(const Openings&) = delete;

    int count() {
        inotify_event event{};
        while (::read(events_, &event, sizeof event) == ssize_t(sizeof event)) ++count_;
        return count_;
    }

  private:
    int events_;
    int count_ = 0;
};

}  // namespace test
