#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <QByteArray>
#include <QString>

namespace test {

/// A serial line: its near end has a name for the program, its far end is the test's and never waits.
class Pty {
  public:
    Pty() {
        EXPECT_EQ(::openpty(&far_, &near_, name_, nullptr, nullptr), 0);
        ::fcntl(far_, F_SETFL, O_NONBLOCK);
    }
    ~Pty() { hangUp(); }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    QString name() const { return QString::fromLatin1(name_); }
    int near() const { return near_; }
    int far() const { return far_; }
    void send(const QByteArray& text) const {
        EXPECT_EQ(::write(far_, text, size_t(text.size())), text.size());
    }
    void hangUp() {
        for (int* end : {&near_, &far_}) ::close(std::exchange(*end, -1));
    }

  private:
    int far_ = -1;
    int near_ = -1;
    char name_[64];
};

}  // namespace test
