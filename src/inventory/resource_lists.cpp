// Parsing of the 9x devnode allocation and the NT resource list (layouts in the header).
#include "inventory/resource_lists.h"

#include <cstddef>
#include <cstdint>

namespace Hostkit::inventory {

namespace {

// Reads little-endian numbers from a byte range, refusing to read past its end.
class ByteReader {
 public:
  ByteReader(const std::vector<BYTE>& data, std::size_t begin, std::size_t end)
      : data_(data), at_(begin), end_(end) {}

  bool Has(std::size_t count) const { return at_ <= end_ && end_ - at_ >= count; }
  std::size_t At() const { return at_; }

  std::uint64_t Number(std::size_t bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
      value |= std::uint64_t{data_[at_ + i]} << (8 * i);
    }
    at_ += bytes;
    return value;
  }
  unsigned long Dword() { return static_cast<unsigned long>(Number(4)); }
  unsigned long Word() { return static_cast<unsigned long>(Number(2)); }
  int Byte() { return static_cast<int>(Number(1)); }
  void Skip(std::size_t bytes) { at_ += bytes; }

 private:
  const std::vector<BYTE>& data_;
  std::size_t at_;
  std::size_t end_;
};

enum ConfigManagerType : unsigned long { kCmMemory = 1, kCmIo = 2, kCmDma = 3, kCmIrq = 4 };
enum PartialType : int { kPort = 1, kInterrupt = 2, kMemory = 3, kDma = 4, kDeviceSpecific = 5 };

constexpr std::size_t kCmHeader = 8;
constexpr std::size_t kPartialSize = 16;

// One 9x descriptor's data, `reader` spanning exactly that data.
bool ConfigManagerDescriptor(unsigned long type, ByteReader reader, Resources& resources) {
  switch (type) {
    case kCmMemory: {
      if (!reader.Has(16)) {
        return false;
      }
      reader.Skip(8);
      const unsigned long base = reader.Dword();
      resources.memoryRanges.push_back({base, reader.Dword()});
      return true;
    }
    case kCmIo: {
      if (!reader.Has(8)) {
        return false;
      }
      reader.Skip(4);
      const unsigned long base = reader.Word();
      resources.ioRanges.push_back({base, reader.Word()});
      return true;
    }
    case kCmDma:
      if (!reader.Has(2)) {
        return false;
      }
      reader.Skip(1);
      resources.dmaChannels.push_back(reader.Byte());
      return true;
    case kCmIrq:
      if (!reader.Has(2)) {
        return false;
      }
      reader.Skip(1);
      resources.irqs.push_back(reader.Byte());
      return true;
    default:
      return true;
  }
}

// One 16-byte partial descriptor; `reader` stands at its type byte. Device-specific data that
// follows the descriptor is skipped.
bool PartialDescriptor(ByteReader& reader, Resources& resources) {
  if (!reader.Has(kPartialSize)) {
    return false;
  }
  const int type = reader.Byte();
  reader.Skip(3);
  switch (type) {
    case kPort:
    case kMemory: {
      const auto start = static_cast<unsigned long>(reader.Number(8));
      const unsigned long length = reader.Dword();
      if (length != 0) {
        (type == kPort ? resources.ioRanges : resources.memoryRanges)
            .push_back({start, start + length - 1});
      }
      return true;
    }
    case kInterrupt:
      resources.irqs.push_back(static_cast<int>(reader.Dword()));
      reader.Skip(8);
      return true;
    case kDma:
      resources.dmaChannels.push_back(static_cast<int>(reader.Dword()));
      reader.Skip(8);
      return true;
    case kDeviceSpecific: {
      const unsigned long size = reader.Dword();
      reader.Skip(8);
      if (!reader.Has(size)) {
        return false;
      }
      reader.Skip(size);
      return true;
    }
    default:
      reader.Skip(12);
      return true;
  }
}

}  // namespace

bool ParseConfigManagerAllocation(const std::vector<BYTE>& data, Resources& resources) {
  ByteReader reader(data, 0, data.size());
  if (!reader.Has(kCmHeader)) {
    return false;
  }
  reader.Skip(kCmHeader);
  while (reader.Has(4)) {
    const std::size_t start = reader.At();
    const unsigned long length = reader.Dword();
    if (length == 0) {
      return true;
    }
    if (length < kCmHeader || !ByteReader(data, start, data.size()).Has(length)) {
      return false;
    }
    const unsigned long type = reader.Dword();
    if (!ConfigManagerDescriptor(type, ByteReader(data, start + kCmHeader, start + length),
                                 resources)) {
      return false;
    }
    reader.Skip(length - kCmHeader);
  }
  return reader.At() == data.size();
}

bool ParseResourceList(const std::vector<BYTE>& data, Resources& resources) {
  ByteReader reader(data, 0, data.size());
  if (!reader.Has(4)) {
    return false;
  }
  for (unsigned long full = reader.Dword(); full > 0; --full) {
    if (!reader.Has(16)) {
      return false;
    }
    reader.Skip(12);
    for (unsigned long partial = reader.Dword(); partial > 0; --partial) {
      if (!PartialDescriptor(reader, resources)) {
        return false;
      }
    }
  }
  return true;
}

void AddResources(Resources& resources, const Resources& more) {
  resources.irqs.insert(resources.irqs.end(), more.irqs.begin(), more.irqs.end());
  resources.dmaChannels.insert(resources.dmaChannels.end(), more.dmaChannels.begin(),
                               more.dmaChannels.end());
  resources.ioRanges.insert(resources.ioRanges.end(), more.ioRanges.begin(), more.ioRanges.end());
  resources.memoryRanges.insert(resources.memoryRanges.end(), more.memoryRanges.begin(),
                                more.memoryRanges.end());
}

}  // namespace Hostkit::inventory
