// The public header from C++: names keep C linkage.
#include "zorvstat.h"

int main() { return zorvs_d_vmin(2, 4.0, 3.0) == 3.0 && zorvs_error_code() == 0 ? 0 : 1; }
