// readerr.cpp - texts and symbolic names of messages.
//
// Without a catalogue each message reads "Error code %ld." with its code,
// and its name is the code in decimal.

#include <cstdio>

#include "frame/services.h"

namespace {
char lv_special_message[64];
char lv_name[32];
}  // namespace

extern "C" {

char *zorvs_find_message(int code) {
    std::snprintf(lv_special_message, sizeof lv_special_message, "Error code %ld.", static_cast<long>(code));
    return lv_special_message;
}

char *zorvs_find_name(int code) {
    std::snprintf(lv_name, sizeof lv_name, "%ld", static_cast<long>(code));
    return lv_name;
}

void zorvs_ermes(int type, int code) { zorvs_e1mes(type, code, zorvs_find_message(code)); }

}  // extern "C"
