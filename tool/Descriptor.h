#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <utility>

/// An open file, which is closed at the end.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor();

  /// Opens a file to read it. Throws Failure.
  static Descriptor openForReading(const std::string& path);

  int number() const { return number_; }
  explicit operator bool() const { return number_ >= 0; }

 private:
  int number_;
};

/// Reads what is there, at most as much as the buffer holds; returns nothing at the end of the file. Throws
/// Failure, with the name.
std::span<const std::byte> readPiece(int descriptor, std::span<std::byte> buffer, const std::string& name);

/// Writes all of it; returns false, with errno set, if that is not possible.
bool writeFully(int descriptor, std::span<const std::byte> bytes);
