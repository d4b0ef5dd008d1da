#pragma once

#include <atomic>
#include <memory>
#include <vector>

/// The current one of values that replace one another, read without a lock. A value is destroyed once nobody
/// reads it: when another one is published while there are no readers. One thread at a time may publish.
template <class Value>
class UTPublished {
 public:
  /// Access to the value that is current when this is created, which lives as long.
  class Reading {
   public:
    explicit Reading(const UTPublished& published) : published_(published) {
      published_.readers_.fetch_add(1);
      value_ = published_.current_.load();
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading() { published_.readers_.fetch_sub(1); }

    const Value& operator*() const { return *value_; }
    const Value* operator->() const { return value_; }

   private:
    const UTPublished& published_;
    const Value* value_;
  };

  /// Whether there is a value.
  explicit operator bool() const { return current_.load() != nullptr; }
  /// Returns access to the current value, which there must be.
  Reading read() const { return Reading(*this); }

  /// Replaces the current value. A reader that comes later sees this one: in the single order of these
  /// operations, it adds itself before it loads.
  void publish(std::unique_ptr<const Value> value) {
    values_.push_back(std::move(value));
    current_.store(values_.back().get());
    if (readers_.load() == 0) values_.erase(values_.begin(), values_.end() - 1);
  }

 private:
  mutable std::atomic<std::size_t> readers_ = 0;
  std::atomic<const Value*> current_ = nullptr;
  std::vector<std::unique_ptr<const Value>> values_;
};
