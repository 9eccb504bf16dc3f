// Hand-built resource lists in the layouts the device inventory parses: the 9x devnode
// allocation and the NT REG_RESOURCE_LIST (both stated in src/inventory/resource_lists.h).
#pragma once

#include <cstdint>
#include <vector>

namespace hostkit_test {

using Bytes = std::vector<unsigned char>;

inline void Put(Bytes& bytes, std::uint64_t value, int size) {
  for (int i = 0; i < size; ++i) {
    bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
  }
}

// 9x: the header, then descriptors added one by one; End() closes the list.
class Allocation {
 public:
  Allocation() {
    Put(bytes_, 0x400, 4);
    Put(bytes_, 0, 4);
  }
  Allocation& Irq(int line) {
    return Descriptor(4, {0x00, static_cast<unsigned char>(line), 0xFF, 0xFF, 0, 0, 0, 0});
  }
  Allocation& Dma(int channel) {
    return Descriptor(3, {0x00, static_cast<unsigned char>(channel), 0, 0});
  }
  Allocation& Io(unsigned base, unsigned end) {
    Bytes data;
    Put(data, 1, 2);
    Put(data, 0, 2);
    Put(data, base, 2);
    Put(data, end, 2);
    Put(data, 0, 4);
    return Descriptor(2, data);
  }
  Allocation& Memory(unsigned long base, unsigned long end) {
    Bytes data;
    Put(data, 1, 4);
    Put(data, 0, 4);
    Put(data, base, 4);
    Put(data, end, 4);
    Put(data, 0, 4);
    return Descriptor(1, data);
  }
  Allocation& Descriptor(unsigned type, const Bytes& data) {
    Put(bytes_, 8 + data.size(), 4);
    Put(bytes_, type, 4);
    bytes_.insert(bytes_.end(), data.begin(), data.end());
    return *this;
  }
  Bytes End() const {
    Bytes bytes = bytes_;
    Put(bytes, 0, 4);
    return bytes;
  }

 private:
  Bytes bytes_;
};

// NT: one full descriptor whose partial descriptors are added one by one.
class ResourceList {
 public:
  ResourceList& Port(std::uint64_t start, unsigned long length) {
    return Partial(1, start, length, 0);
  }
  ResourceList& Interrupt(unsigned long level, unsigned long vector) {
    return Partial(2, level | std::uint64_t{vector} << 32, 1, 0);
  }
  ResourceList& Memory(std::uint64_t start, unsigned long length) {
    return Partial(3, start, length, 0);
  }
  ResourceList& Dma(unsigned long channel) { return Partial(4, channel, 0, 0); }
  ResourceList& DeviceSpecific(const Bytes& data) {
    Partial(5, data.size(), 0, 0);
    partials_.insert(partials_.end(), data.begin(), data.end());
    return *this;
  }
  ResourceList& Partial(int type, std::uint64_t first, unsigned long third, int flags) {
    Put(partials_, static_cast<unsigned>(type), 1);
    Put(partials_, 1, 1);
    Put(partials_, static_cast<unsigned>(flags), 2);
    Put(partials_, first, 8);
    Put(partials_, third, 4);
    ++count_;
    return *this;
  }
  Bytes Build() const {
    Bytes bytes;
    Put(bytes, 1, 4);  // one full descriptor
    Put(bytes, 1, 4);  // Isa
    Put(bytes, 0, 4);  // bus 0
    Put(bytes, 1, 2);
    Put(bytes, 1, 2);
    Put(bytes, count_, 4);
    bytes.insert(bytes.end(), partials_.begin(), partials_.end());
    return bytes;
  }

 private:
  Bytes partials_;
  unsigned count_ = 0;
};

}  // namespace hostkit_test
