#include "sim/sim_memory.h"

#include <cstring>

namespace quorvex {

namespace {
// Heap blocks are 8-byte aligned; a guard gap keeps a read that runs past
// a block's end from landing in the next one.
constexpr std::uint32_t kAlign = 8;
constexpr std::uint32_t kGap = 16;
}  // namespace

std::uint32_t SimMemory::Allocate(std::size_t size, std::uint8_t fill) {
  std::uint32_t at = next_;
  blocks_.emplace(at, std::vector<std::uint8_t>(size, fill));
  std::uint32_t span = static_cast<std::uint32_t>(size) + kGap;
  next_ += (span + kAlign - 1) / kAlign * kAlign;
  return at;
}

void SimMemory::Free(std::uint32_t address) { blocks_.erase(address); }

std::map<std::uint32_t, std::vector<std::uint8_t>>::const_iterator
SimMemory::Holder(std::uint32_t address, std::size_t size) const {
  auto it = blocks_.upper_bound(address);
  if (it == blocks_.begin()) return blocks_.end();
  --it;
  std::uint64_t end = static_cast<std::uint64_t>(it->first) + it->second.size();
  if (static_cast<std::uint64_t>(address) + size > end) return blocks_.end();
  return it;
}

bool SimMemory::Write(std::uint32_t address, const void* data,
                      std::size_t size) {
  auto it = Holder(address, size);
  if (it == blocks_.end()) return false;
  auto& bytes = blocks_[it->first];
  if (size) std::memcpy(bytes.data() + (address - it->first), data, size);
  return true;
}

bool SimMemory::WriteU32(std::uint32_t address, std::uint32_t value) {
  // Little-endian, as the client's processor stores it.
  std::uint8_t b[4] = {static_cast<std::uint8_t>(value),
                       static_cast<std::uint8_t>(value >> 8),
                       static_cast<std::uint8_t>(value >> 16),
                       static_cast<std::uint8_t>(value >> 24)};
  return Write(address, b, 4);
}

bool SimMemory::Read(std::uint32_t address, void* out, std::size_t size) const {
  auto it = Holder(address, size);
  if (it == blocks_.end()) return false;
  if (size) std::memcpy(out, it->second.data() + (address - it->first), size);
  return true;
}

}  // namespace quorvex
