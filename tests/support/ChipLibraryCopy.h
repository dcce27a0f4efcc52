#pragma once

#include <string>

namespace chipsim_test {

// A copy of the chip model's library under another file name, so that dlopen
// gives a second, distinct handle (as a second PD library would). The copy is
// removed when this object goes.
class ChipLibraryCopy {
 public:
  ChipLibraryCopy();
  ~ChipLibraryCopy();
  ChipLibraryCopy(const ChipLibraryCopy&) = delete;
  ChipLibraryCopy& operator=(const ChipLibraryCopy&) = delete;

  const std::string& path() const noexcept { return path_; }
  // The copy's dynamic-load handle.
  void* handle() const noexcept { return handle_; }

 private:
  std::string path_;
  void* handle_ = nullptr;
};

}  // namespace chipsim_test
