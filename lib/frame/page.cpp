// page.cpp - zorvs_page: the page width and length that the matrix printer
// wraps and breaks its output at.

#include "frame/services.h"
#include "zorvstat.h"

namespace {

// Page width and length; a process-wide setting.
struct PageState {
    int ipage1[2] = {78, 60};
};
constinit thread_local PageState lv_page;

}  // namespace

extern "C" void zorvs_page(int option, int *value) {
    zorvs_e1psh("zorvs_page");
    if (option < -2 || option > 2 || option == 0) {
        zorvs_e1sti(1, option);
        zorvs_ermes(5, 10020);
    } else if (option == -1 && value && *value < 10) {
        zorvs_e1sti(1, *value);
        zorvs_ermes(5, 10021);
    } else if (option == -2 && value && *value < 10) {
        zorvs_e1sti(1, *value);
        zorvs_ermes(5, 10022);
    }
    if (zorvs_error_n1rty[0] == 0) {
        if (!value) {
            zorvs_e1stl(1, "value");
            zorvs_e1sti(1, -1);
            zorvs_ermes(5, 150);
        } else if (option > 0) {
            *value = lv_page.ipage1[option - 1];
        } else {
            lv_page.ipage1[-option - 1] = *value;
        }
    }
    zorvs_e1pop("zorvs_page");
}
