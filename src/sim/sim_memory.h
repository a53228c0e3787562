// The simulated client process's address space: blocks of bytes at fixed
// addresses with unmapped gaps between them, as another process sees them
// through ReadProcessMemory. Freed blocks are never mapped again, so a
// stale pointer reads nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

namespace quorvex {

class SimMemory {
 public:
  explicit SimMemory(std::uint32_t base = 0x00A3F000) : next_(base) {}

  // Maps a new block of `size` bytes filled with `fill`; its address.
  std::uint32_t Allocate(std::size_t size, std::uint8_t fill = 0);
  void Free(std::uint32_t address);
  // Writes into a mapped block; false when the range is not all mapped.
  bool Write(std::uint32_t address, const void* data, std::size_t size);
  bool WriteU32(std::uint32_t address, std::uint32_t value);
  // Copies `size` bytes; false (nothing copied) unless one block holds
  // the whole range.
  bool Read(std::uint32_t address, void* out, std::size_t size) const;

  int blocks() const { return static_cast<int>(blocks_.size()); }
  // Every mapped block by its address (to lay them out in a real process).
  const std::map<std::uint32_t, std::vector<std::uint8_t>>& mapped() const {
    return blocks_;
  }

 private:
  // The block holding [address, address + size), or end().
  std::map<std::uint32_t, std::vector<std::uint8_t>>::const_iterator Holder(
      std::uint32_t address, std::size_t size) const;

  std::map<std::uint32_t, std::vector<std::uint8_t>> blocks_;
  std::uint32_t next_;
};

}  // namespace quorvex
