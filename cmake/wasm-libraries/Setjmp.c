#include <setjmp.h>

// What the compiler calls for setjmp and longjmp with -wasm-enable-sjlj. Names and meanings are
// those of LLVM's pass WebAssemblyLowerEmscriptenEHSjLj.

void __wasm_setjmp(jmp_buf place, unsigned label, void* call) {
    place->call = call;
    place->label = label;
}

// Which setjmp of this call the jump leads to; 0 for one that leads further up.
unsigned __wasm_setjmp_test(jmp_buf place, void* call) {
    return place->call == call ? place->label : 0;
}

_Noreturn void __wasm_longjmp(jmp_buf place, int value) {
    // Of the exception that a jump is, as the compiler counts them: 0 is that of C++. Its value is the
    // address of the jump's two words.
    enum { jumpTag = 1 };
    place->jump.place = place;
    place->jump.value = value == 0 ? 1 : value;
    __builtin_wasm_throw(jumpTag, &place->jump);
}
