#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "Vault/TableHeader.h"
#include "Vault/TableLayout.h"

// Direct access to a table's segment, as damage or a hostile process would
// change it: bytes flipped, fields rewritten, the file cut short.
class RawSegment {
 public:
  explicit RawSegment(const std::string& name) : fd_(shm_open(name.c_str(), O_RDWR, 0)) {
    if (fd_ < 0) {
      throw std::runtime_error("cannot open " + name);
    }
  }
  ~RawSegment() { close(fd_); }
  RawSegment(const RawSegment&) = delete;
  RawSegment& operator=(const RawSegment&) = delete;

  std::uint64_t size() const {
    struct stat status;
    fstat(fd_, &status);
    return static_cast<std::uint64_t>(status.st_size);
  }
  void truncate(std::uint64_t size) const {
    if (ftruncate(fd_, static_cast<off_t>(size)) != 0) {
      throw std::runtime_error("truncate");
    }
  }
  void read(std::uint64_t offset, void* out, std::size_t size) const {
    if (pread(fd_, out, size, static_cast<off_t>(offset)) != static_cast<ssize_t>(size)) {
      throw std::runtime_error("read");
    }
  }
  void write(std::uint64_t offset, const void* bytes, std::size_t size) const {
    if (pwrite(fd_, bytes, size, static_cast<off_t>(offset)) != static_cast<ssize_t>(size)) {
      throw std::runtime_error("write");
    }
  }
  void flipBit(std::uint64_t offset, unsigned bit) const {
    unsigned char byte;
    read(offset, &byte, 1);
    byte ^= static_cast<unsigned char>(1u << bit);
    write(offset, &byte, 1);
  }

  Vault::TableHeader header() const {
    Vault::TableHeader header;
    read(0, &header, sizeof header);
    return header;
  }
  // Writes a header; with `reseal` its checksum is made to match, as a hostile
  // writer that knows the format would.
  void headerIs(Vault::TableHeader header, bool reseal) const {
    if (reseal) {
      header.headerChecksum = header.expectedChecksum();
    }
    write(0, &header, sizeof header);
  }

 private:
  int fd_;
};
