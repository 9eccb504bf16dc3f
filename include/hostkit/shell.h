// The owning pointer every public class holds to its implementation object.
//
// Copying a shell copies the implementation object, so two shells never share one and an
// implementation is never released twice. Allocation failure leaves the pointer null; every
// public method then answers its failure value without acting. The members are defined in
// src/foundation/shell_impl.h and instantiated once per class inside the library.
#pragma once

namespace Hostkit {

template <class Impl>
class Pimpl {
 public:
  Pimpl() noexcept;
  Pimpl(const Pimpl& other) noexcept;
  Pimpl& operator=(const Pimpl& other) noexcept;
  ~Pimpl();

  Impl* get() const noexcept { return impl_; }
  Impl* operator->() const noexcept { return impl_; }
  explicit operator bool() const noexcept { return impl_ != nullptr; }

 private:
  Impl* impl_;
};

}  // namespace Hostkit
