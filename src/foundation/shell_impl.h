// Member definitions of Pimpl; included by the .cpp of each public class, which then
// instantiates Pimpl for its implementation class.
#pragma once

#include <utility>

#include "hostkit/shell.h"

namespace Hostkit {

namespace detail {
// A new implementation object, or null when allocation or the constructor fails.
template <class Impl, class... Args>
Impl* NewOrNull(Args&&... args) noexcept {
  try {
    return new Impl(std::forward<Args>(args)...);
  } catch (...) {
    return nullptr;
  }
}
}  // namespace detail

// What a public method answers: the implementation's result, or `fallback` when the shell has no
// implementation or the call throws (no exception leaves the library).
template <class Impl, class Result, class Call>
Result Forward(const Pimpl<Impl>& impl, Result fallback, Call call) noexcept {
  if (!impl) {
    return fallback;
  }
  try {
    return call(*impl.get());
  } catch (...) {
    return fallback;
  }
}

template <class Impl>
Pimpl<Impl>::Pimpl() noexcept : impl_(detail::NewOrNull<Impl>()) {}

template <class Impl>
Pimpl<Impl>::Pimpl(const Pimpl& other) noexcept
    : impl_(other.impl_ != nullptr ? detail::NewOrNull<Impl>(*other.impl_) : nullptr) {}

template <class Impl>
Pimpl<Impl>& Pimpl<Impl>::operator=(const Pimpl& other) noexcept {
  if (this != &other) {
    Impl* copy = other.impl_ != nullptr ? detail::NewOrNull<Impl>(*other.impl_) : nullptr;
    delete impl_;
    impl_ = copy;
  }
  return *this;
}

template <class Impl>
Pimpl<Impl>::~Pimpl() {
  delete impl_;
  impl_ = nullptr;
}

}  // namespace Hostkit
