// What talking to the system's imaging component takes: COM switched on, pointers that release, and
// result codes as this folder's errors.
#pragma once

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

#include <utility>

namespace kelto::stills {

/// COM on this thread for as long as the object lives. A thread that has chosen its own kind of COM
/// keeps it: the component works in either.
class ComSession {
 public:
  ComSession() : begun_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {}
  ~ComSession() {
    if (begun_) CoUninitialize();
  }
  ComSession(const ComSession&) = delete;
  ComSession& operator=(const ComSession&) = delete;

 private:
  bool begun_;
};

/// Owns one reference.
template <typename T>
class Com {
 public:
  Com() = default;
  /// Takes over the caller's reference.
  explicit Com(T* object) : object_(object) {}
  Com(Com&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Com& operator=(Com&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Com() {
    if (object_ != nullptr) object_->Release();
  }

  T* get() const { return object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  /// Where a call puts its result; only while nothing is owned.
  T** Receive() { return &object_; }
  /// The same object by another of its interfaces; null when it has no such one.
  template <typename Other>
  Com<Other> As() const {
    Com<Other> other;
    if (object_ != nullptr) {
      void* found = nullptr;
      if (SUCCEEDED(object_->QueryInterface(__uuidof(Other), &found))) {
        other = Com<Other>(static_cast<Other*>(found));
      }
    }
    return other;
  }

 private:
  T* object_ = nullptr;
};

}  // namespace kelto::stills
