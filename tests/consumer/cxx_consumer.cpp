// The public header from C++: names keep C linkage.
#include <cstdio>

#include "zorvstat.h"

int main() {
    if (zorvs_d_vmin(2, 4.0, 3.0) != 3.0) return 1;
    if (zorvs_error_code() != 0) return 1;
    std::puts("c++ consumer: ok");
    return 0;
}
