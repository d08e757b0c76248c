// Owner of an open file descriptor. Its destructor closes the file.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace zqv::cli {

class Descriptor {
 public:
  // Takes ownership of a descriptor. A negative number means that no file is open.
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { static_cast<void>(Close()); }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool IsOpen() const { return number_ >= 0; }
  int number() const { return number_; }

  // Closes the file now. Returns 0 or the errno of the failure.
  int Close() { return IsOpen() && close(std::exchange(number_, -1)) != 0 ? errno : 0; }

 private:
  int number_;
};

}  // namespace zqv::cli
