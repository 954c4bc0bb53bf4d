// Calls from hosts of other compilers: the system's rules leave the stack at any multiple of four,
// while vectors are kept at multiples of 16 and 32.
#pragma once

#include <cstdint>

namespace kelto::test {

/// The stack's places modulo 16 from which FromShiftedStack can call.
constexpr uint32_t kStackShifts[] = {0, 4, 8, 12};

/// Calls `function(argument)` with the stack moved by a shift. Nothing may be thrown through it.
void CallFromShiftedStack(void (*function)(void*), void* argument, uint32_t shift);

template <typename Function>
void FromShiftedStack(uint32_t shift, Function function) {
  CallFromShiftedStack([](void* f) { (*static_cast<Function*>(f))(); }, &function, shift);
}

}  // namespace kelto::test
