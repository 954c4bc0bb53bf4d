// A std::variant that may be copied when memory is short.
#pragma once

#include <utility>
#include <variant>

namespace kelto::host {

/// In GCC 12's library a std::variant with a std::string destroys what is not there yet, and so
/// ends the process, when the string's copy finds no memory. Assigning to one that has a value does
/// not. The first of `Types` must be made without memory.
template <typename... Types>
class Variant : public std::variant<Types...> {
 public:
  using Base = std::variant<Types...>;
  using Base::Base;
  using Base::operator=;
  Variant() = default;
  ~Variant() = default;
  Variant(const Variant& other) : Base() { Base::operator=(other); }
  Variant(Variant&&) noexcept = default;
  Variant& operator=(const Variant&) = default;
  Variant& operator=(Variant&&) noexcept = default;
};

}  // namespace kelto::host
