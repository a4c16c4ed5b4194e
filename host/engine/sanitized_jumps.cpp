// Only for the thread sanitizer, which follows calls by itself: it knows longjmp, but not the
// checked form that Debian's Duktape uses, and would take every call that a failure left for one
// still open.

#include <csetjmp>

extern "C" __attribute__((visibility("default"), noreturn)) void __longjmp_chk(jmp_buf to,
                                                                               int value) {
    longjmp(to, value);
}
