#pragma once

#include <concepts>
#include <cstdint>
#include <type_traits>

#include "Vel/BitReverse.h"
#include "Vel/Ptr.h"

// Hashing of collection keys. A key type is hashed by a free function
// `std::uint32_t fwkHash(const Key&)`: the framework provides it here for
// integers, enumerations and counted references; any other key type declares
// its own in its namespace, where argument-dependent lookup finds it.

namespace Vel {

// Integers of 32 bits or fewer are their own hash.
template <std::integral I>
requires(sizeof(I) <= sizeof(std::uint32_t)) constexpr std::uint32_t fwkHash(I value) noexcept {
  return static_cast<std::uint32_t>(value);
}

// 64-bit integers fold their upper half onto their lower half.
template <std::integral I>
requires(sizeof(I) == sizeof(std::uint64_t)) constexpr std::uint32_t fwkHash(I value) noexcept {
  const auto word = static_cast<std::uint64_t>(value);
  return static_cast<std::uint32_t>(word) ^ static_cast<std::uint32_t>(word >> 32);
}

// Enumerations hash as their underlying integer.
template <class E>
requires std::is_enum_v<E>
constexpr std::uint32_t fwkHash(E value) noexcept {
  return fwkHash(static_cast<std::underlying_type_t<E>>(value));
}

// The reversed hash of an address (see fwkReversedHashOfKey): the upper half of
// its product with 2^64 over the golden ratio. Addresses are aligned and
// clustered; the top bits of the product, which choose the bucket, depend on
// every bit of the address, and one multiply is all a look-up pays.
constexpr std::uint32_t fwkReversedHashOfAddress(std::uintptr_t address) noexcept {
  return static_cast<std::uint32_t>((static_cast<std::uint64_t>(address) * 0x9e3779b97f4a7c15ull) >>
                                    32);
}

// The hash of an address: its reversed hash, reversed.
constexpr std::uint32_t fwkHashOfAddress(std::uintptr_t address) noexcept {
  return bitReverse(fwkReversedHashOfAddress(address));
}

// A counted reference hashes by the identity of its object, not its contents.
template <class T>
std::uint32_t fwkHash(const Ptr<T>& reference) noexcept {
  return fwkHashOfAddress(reinterpret_cast<std::uintptr_t>(reference.get()));
}
template <class T>
std::uint32_t fwkReversedHash(const Ptr<T>& reference) noexcept {
  return fwkReversedHashOfAddress(reinterpret_cast<std::uintptr_t>(reference.get()));
}

// The hash of a key, through the framework's overloads above or the key
// type's own fwkHash.
template <class Key>
std::uint32_t fwkHashOfKey(const Key& key) {
  return fwkHash(key);
}

// The bits of a key's hash in reverse order, by which the framework's hash
// maps order their elements and choose their buckets: bitReverse(fwkHash(key)),
// or the key type's fwkReversedHash where it has one that is cheaper to make
// (it must give the same value).
template <class Key>
std::uint32_t fwkReversedHashOfKey(const Key& key) {
  if constexpr (requires { fwkReversedHash(key); })
    return fwkReversedHash(key);
  else
    return bitReverse(fwkHash(key));
}

// What the framework's hash maps need of a key: a fwkHash, equality, and an
// order that decides between keys of equal hash.
template <class Key>
concept FwkKey = requires(const Key& a, const Key& b) {
  { fwkHash(a) } -> std::convertible_to<std::uint32_t>;
  { a == b } -> std::convertible_to<bool>;
  { a < b } -> std::convertible_to<bool>;
};

}  // namespace Vel
