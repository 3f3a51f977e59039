// process.cpp - small services on the process: processor time and the check
// of a pointer argument.

#include <sys/times.h>
#include <unistd.h>

#include "frame/machine.h"
#include "frame/services.h"

extern "C" {

// User and system time of this process (not of its children), in seconds,
// from times(2) and the clock ticks per second of sysconf(3).
double zorvs_ctime(void) {
    struct tms t;
    times(&t);
    long ticks = sysconf(_SC_CLK_TCK);
    if (ticks <= 0) ticks = 100;
    return static_cast<double>(t.tms_utime + t.tms_stime) / static_cast<double>(ticks);
}

void zorvs_null_pointer(const char *name, int i, const void *p) {
    if (p) return;
    zorvs_e1stl(1, name);
    zorvs_e1sti(1, i);
    zorvs_ermes(5, i >= 0 ? 151 : 150);
}

}  // extern "C"
