// setjmp and longjmp for WebAssembly, which wasi's C library does not come with: the compiler turns a call of
// setjmp into what Setjmp.c does, by the machine's own exceptions.
#ifndef KALIM_SETJMP_H
#define KALIM_SETJMP_H

#ifdef __cplusplus
extern "C" {
#endif

// Which call of which function the jump leads to, and what it brings there.
typedef struct {
    void* call;
    unsigned label;
    struct {
        void* place;
        int value;
    } jump;
} jmp_buf[1];

int setjmp(jmp_buf place) __attribute__((returns_twice));
__attribute__((noreturn)) void longjmp(jmp_buf place, int value);

#ifdef __cplusplus
}
#endif

#endif
