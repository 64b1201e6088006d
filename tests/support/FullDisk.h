#pragma once

#include <sys/resource.h>

#include <csignal>

namespace test {

/// While it lives, no file of this process grows beyond `limitBytes`: a write past it fails, as on a full
/// disk.
class FullDisk {
  public:
    explicit FullDisk(rlim_t limitBytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{limitBytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit before_{};
    void (*signal_)(int);
};

}  // namespace test
