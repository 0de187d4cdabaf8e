#pragma once
// Owns a file descriptor. For the adapters of this folder only.

#include <unistd.h>

#include <utility>

namespace wendel {

class Dateideskriptor {
  public:
    Dateideskriptor() = default;
    explicit Dateideskriptor(int fd) : fd_(fd) {}
    Dateideskriptor(Dateideskriptor&& anderer) noexcept : fd_(std::exchange(anderer.fd_, -1)) {}
    Dateideskriptor& operator=(Dateideskriptor&& anderer) noexcept {
        std::swap(fd_, anderer.fd_);
        return *this;
    }
    ~Dateideskriptor() {
        if (fd_ >= 0) ::close(fd_);
    }

    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }

  private:
    int fd_ = -1;
};

}  // namespace wendel
