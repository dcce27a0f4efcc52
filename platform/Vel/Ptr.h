#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

#include "Vel/PtrInterface.h"

namespace Vel {

// Counted reference to a PtrInterface object: a copy adds one reference, a
// release drops one, and the object dies with its last reference.
template <class T>
class Ptr {
 public:
  using element_type = T;

  Ptr() noexcept = default;
  Ptr(std::nullptr_t) noexcept {}
  Ptr(T* object) noexcept : object_(object) { acquire(); }
  Ptr(const Ptr& other) noexcept : object_(other.object_) { acquire(); }
  Ptr(Ptr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ptr(const Ptr<U>& other) noexcept : object_(other.get()) {
    acquire();
  }
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ptr(Ptr<U>&& other) noexcept : object_(other.release()) {}
  ~Ptr() { releaseRef(); }

  Ptr& operator=(const Ptr& other) noexcept {
    Ptr(other).swap(*this);
    return *this;
  }
  Ptr& operator=(Ptr&& other) noexcept {
    Ptr(std::move(other)).swap(*this);
    return *this;
  }
  Ptr& operator=(std::nullptr_t) noexcept {
    Ptr().swap(*this);
    return *this;
  }

  T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }
  bool operator!() const noexcept { return object_ == nullptr; }

  void swap(Ptr& other) noexcept { std::swap(object_, other.object_); }
  // Gives up the reference without dropping it; the caller owns it.
  T* release() noexcept { return std::exchange(object_, nullptr); }

 private:
  void acquire() const noexcept {
    if (object_ != nullptr)
      object_->newRef();
  }
  void releaseRef() noexcept {
    if (T* object = std::exchange(object_, nullptr))
      object->deleteRef();
  }

  T* object_ = nullptr;
};

template <class T, class U>
bool operator==(const Ptr<T>& a, const Ptr<U>& b) noexcept {
  return a.get() == b.get();
}
template <class T>
bool operator==(const Ptr<T>& a, std::nullptr_t) noexcept {
  return a.get() == nullptr;
}
template <class T, class U>
bool operator<(const Ptr<T>& a, const Ptr<U>& b) noexcept {
  return std::less<const void*>()(a.get(), b.get());
}

// Narrows a reference to a derived type; null when the object is of another type.
template <class T, class U>
Ptr<T> ptr_cast(const Ptr<U>& p) noexcept {
  return Ptr<T>(dynamic_cast<T*>(p.get()));
}

template <class T, class U>
Ptr<T> static_ptr_cast(const Ptr<U>& p) noexcept {
  return Ptr<T>(static_cast<T*>(p.get()));
}

template <class T, class U>
Ptr<T> const_ptr_cast(const Ptr<U>& p) noexcept {
  return Ptr<T>(const_cast<T*>(p.get()));
}

}  // namespace Vel

template <class T>
struct std::hash<Vel::Ptr<T>> {
  std::size_t operator()(const Vel::Ptr<T>& p) const noexcept { return std::hash<T*>()(p.get()); }
};
