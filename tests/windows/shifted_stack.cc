#include "tests/windows/shifted_stack.h"

extern "C" void kelto_call_from_shifted_stack(void (*function)(void*), void* argument,
                                              uint32_t shift);

// A frame as compilers make it, with the stack set to its place between.
asm(R"(
  .text
_kelto_call_from_shifted_stack:
  pushl %ebp
  movl %esp, %ebp
  andl $-16, %esp
  subl 16(%ebp), %esp
  pushl 12(%ebp)
  call *8(%ebp)
  leave
  ret
)");

namespace kelto::test {

void CallFromShiftedStack(void (*function)(void*), void* argument, uint32_t shift) {
  kelto_call_from_shifted_stack(function, argument, shift);
}

}  // namespace kelto::test
