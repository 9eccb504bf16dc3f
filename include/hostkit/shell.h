/// \file
/// The owning pointer every public class holds to its implementation object.
///
/// Copying a shell copies the implementation object, so two shells never share one and an
/// implementation is never released twice. Allocation failure leaves the pointer null; every
/// public method then answers its failure value without acting. The members are defined in
/// src/foundation/shell_impl.h and instantiated once per class inside the library.
#pragma once

namespace Hostkit {

/// The owning pointer to an implementation object (see the file description). Copying copies the
/// implementation object; a null pointer stands for a failed allocation.
template <class Impl>
class Pimpl {
 public:
  /// A new implementation object; null when it cannot be allocated.
  Pimpl() noexcept;
  ///@{
  /// A copy of the other's implementation object (null when the other's is null or the copy
  /// cannot be allocated).
  Pimpl(const Pimpl& other) noexcept;
  Pimpl& operator=(const Pimpl& other) noexcept;
  ///@}
  /// Deletes the implementation object.
  ~Pimpl();

  ///@{
  /// The implementation object, null when there is none.
  Impl* get() const noexcept { return impl_; }
  Impl* operator->() const noexcept { return impl_; }
  ///@}
  /// Whether there is an implementation object.
  explicit operator bool() const noexcept { return impl_ != nullptr; }

 private:
  Impl* impl_;
};

}  // namespace Hostkit
