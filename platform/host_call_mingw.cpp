#include <windows.h>

#include "platform/host_call.h"

extern "C" {

/// Calls the body under a handler that asks the filter below, which GCC has no words for.
/// @return 0, or 1 when the filter took an exception
int kivra_call_filtered(void (*body)(void*), void* argument);

int kivra_filter_exception(const EXCEPTION_POINTERS* exception, void* /*frame*/) {
    /// What Microsoft's runtime raises for `throw`. GCC's own has another code.
    constexpr DWORD microsoft_exception = 0xE06D7363;
    return exception->ExceptionRecord->ExceptionCode == microsoft_exception
               ? EXCEPTION_EXECUTE_HANDLER
               : EXCEPTION_CONTINUE_SEARCH;
}
}

// The frame has room for the callee's four parameters, and keeps the stack aligned. The table at
// the end: one range of instructions, its filter, and where the filter's yes leads.
asm(R"(
        .text
        .def    kivra_call_filtered; .scl 2; .type 32; .endef
        .globl  kivra_call_filtered
        .seh_proc kivra_call_filtered
kivra_call_filtered:
        subq    $40, %rsp
        .seh_stackalloc 40
        .seh_endprologue
.Lkivra_call_begin:
        movq    %rcx, %rax
        movq    %rdx, %rcx
        call    *%rax
        nop
.Lkivra_call_end:
        xorl    %eax, %eax
        jmp     .Lkivra_call_return
.Lkivra_call_caught:
        movl    $1, %eax
.Lkivra_call_return:
        addq    $40, %rsp
        ret
        .seh_handler __C_specific_handler, @except
        .seh_handlerdata
        .long   1
        .rva    .Lkivra_call_begin, .Lkivra_call_end, kivra_filter_exception, .Lkivra_call_caught
        .text
        .seh_endproc
)");

namespace KIVRA::TSHARK::PLATFORM {

void call_guarded(void (*body)(void*), void* argument) {
    if (kivra_call_filtered(body, argument) != 0) {
        throw foreign_exception();
    }
}

}  // namespace KIVRA::TSHARK::PLATFORM
