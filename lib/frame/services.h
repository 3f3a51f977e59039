/*
 * services.h - the error stack, message raising, trapping and argument
 * checks that every routine of the library is built on.
 *
 * These routines have C linkage and are linkable from the static library,
 * so that a C program can push, raise and pop exactly as a library routine
 * does.  The header compiles as C99 and as C++.
 */
#ifndef ZORVS_SERVICES_H
#define ZORVS_SERVICES_H

#include <setjmp.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Number of frames of the error stack, saved environments and handler levels. */
#define ZORVS_STACK_FRAMES 200
#define ZORVS_MAX_ENVIRONS 100
#define ZORVS_MAX_SIGNAL_LEVELS 20

/* The state below is per thread: each thread has its own parameters, latest
 * types and trap environments.  They are parts of the thread's error-stack
 * record, so that a push, a pop or a trap bracket reaches everything it
 * touches from one thread-local address.  C++ code names the parts directly;
 * a C program reaches them through the calling thread's addresses.
 * (C11 _Thread_local, GNU __thread in C99, for the other per-thread state.) */
#if defined(__cplusplus)
#define ZORVS_THREAD_LOCAL constinit thread_local
#else
#define ZORVS_THREAD_LOCAL __thread
#endif

/* Parameters of the next message, and the table of saved environments. */
struct zorvs_error_param_t {
    int trapped;                      /* set by the trap handler until the next pop */
    int i[10];                        /* %(i1) .. %(i9) */
    double r[10];                     /* %(r1) .. %(r9), also %(d1) .. %(d9) */
    const char *l[10];                /* %(l1) .. %(l9): pointers, not copies */
    char *path;                       /* catalogue search path */
    char *name;                       /* catalogue file in use */
    jmp_buf environ[ZORVS_MAX_ENVIRONS]; /* environments of the trap brackets */
};

/* zorvs_error_param: the parameters; zorvs_error_n1rty: type of the latest
 * event at this level [0], and of the last routine popped [1];
 * zorvs_got_environ: the trap brackets open, the next free slot of
 * zorvs_error_param.environ. */
struct zorvs_error_param_t *zorvs_error_param_address(void);
int *zorvs_error_n1rty_address(void);
int *zorvs_got_environ_address(void);
#if defined(__cplusplus)
#define zorvs_error_param (::zorvs::error_stack.param)
#define zorvs_error_n1rty (::zorvs::error_stack.n1rty)
#define zorvs_got_environ (::zorvs::error_stack.got_environ)
#else
#define zorvs_error_param (*zorvs_error_param_address())
#define zorvs_error_n1rty (zorvs_error_n1rty_address())
#define zorvs_got_environ (*zorvs_got_environ_address())
#endif

/* Error stack. */
void zorvs_e1psh(const char *name);
void zorvs_e1pop(const char *name);
void zorvs_e1mes(int type, int code, const char *text);
void zorvs_e1sti(int n, int value);
void zorvs_e1str(int n, double value);
void zorvs_e1std(int n, double value);
void zorvs_e1stl(int n, const char *s);
void zorvs_e1usr(const char *state);
void zorvs_e1pos(int type, int *print, int *stop);
int zorvs_n1rty(int level);
int zorvs_n1rcd(int level);
void zorvs_set_at_checksum(void (*f)(int type, int code, const char *message));

/* Units: 1 input, 2 output, 3 errors.  n from 1 to 3 reads unit n into
 * *unit; n from -3 to -1 makes *unit the unit -n. */
void zorvs_umach(int n, FILE **unit);

/* Message catalogue. */
void zorvs_ermes(int type, int code);
char *zorvs_find_message(int code);
char *zorvs_find_name(int code);

/* Signal trapping. */
int zorvs_trap_status(void);
void zorvs_set_signal(int on);
void zorvs_signal(void);

#ifdef __cplusplus
}
/* The record that holds zorvs_error_param, zorvs_error_n1rty and
 * zorvs_got_environ. */
#include "frame/error_stack.hpp"
#endif

#endif /* ZORVS_SERVICES_H */
