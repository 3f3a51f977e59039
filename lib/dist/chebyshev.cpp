// chebyshev.cpp - evaluation of a Chebyshev series by Clenshaw's recurrence
// (Clenshaw 1955, Math. Tables Aids Comput. 9, 118-120) and the choice of
// the series length for a given accuracy, in the conventions of Fullerton's
// FNLIB (csevl, inits): the first coefficient is halved, and the length is
// the shortest whose dropped tail, summed in absolute value, is below eta.
#include "dist/special_detail.hpp"

namespace {
using namespace zorvs::special;

template <class T>
T l_csevl(const char *name, T x, const T cs[], int n) {
    return zorvs::value_routine(name, [&] { return csevl_checked(x, cs, n); });
}
template <class T>
int l_inits(const char *name, const T cs[], int nos, float eta) {
    return zorvs::value_routine(name, [&] { return initds_checked(cs, nos, eta); });
}
}  // namespace

extern "C" float zorvs_csevl(float x, const float cs[], int n) { return l_csevl("zorvs_csevl", x, cs, n); }
extern "C" double zorvs_dcsevl(double x, const double cs[], int n) { return l_csevl("zorvs_dcsevl", x, cs, n); }
extern "C" int zorvs_inits(const float cs[], int nos, float eta) { return l_inits("zorvs_inits", cs, nos, eta); }
extern "C" int zorvs_initds(const double cs[], int nos, float eta) { return l_inits("zorvs_initds", cs, nos, eta); }
