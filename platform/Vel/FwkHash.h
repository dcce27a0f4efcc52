#pragma once

#include <concepts>
#include <cstdint>
#include <type_traits>

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

// Mixes every bit of an address into every bit of the hash: addresses are
// aligned and clustered, so their low bits alone would choose few buckets.
constexpr std::uint32_t fwkHashOfAddress(std::uintptr_t address) noexcept {
  auto word = static_cast<std::uint64_t>(address);
  word ^= word >> 33;
  word *= 0xff51afd7ed558ccdull;
  word ^= word >> 33;
  word *= 0xc4ceb9fe1a85ec53ull;
  word ^= word >> 33;
  return static_cast<std::uint32_t>(word) ^ static_cast<std::uint32_t>(word >> 32);
}

// A counted reference hashes by the identity of its object, not its contents.
template <class T>
std::uint32_t fwkHash(const Ptr<T>& reference) noexcept {
  return fwkHashOfAddress(reinterpret_cast<std::uintptr_t>(reference.get()));
}

// The hash of a key, through the framework's overloads above or the key
// type's own fwkHash.
template <class Key>
std::uint32_t fwkHashOfKey(const Key& key) {
  return fwkHash(key);
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
