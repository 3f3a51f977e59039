// random_target.cpp - the generators on any count, shape, seed, generator
// option and shuffle table: every deviate in its support (uniforms in
// (0, 1), gamma and exponential ones not negative, beta ones in [0, 1],
// Poisson counts not negative), a result only without failure.
#include "fuzz_input.hpp"

namespace zorvs_fuzz::random {

const Item reals_menu[] = {{ZORVS_RETURN_USER, "o"}}, ints_menu[] = {{ZORVS_RETURN_USER, "k"}};

template <class T>
void one(Input &in, Store<T> &s) {
    if (in.one_in(4)) zorvs_random_option(in.pick(10) - 1);
    if (in.one_in(4)) zorvs_random_seed_set(in.any_int());
    if (in.one_in(8)) {
        in.fill(s.data, 128);
        twin<T>(zorvs_rnses, zorvs_drnses)(s.data);
    }
    const int n = in.count(300);
    const T a = T(in.real()), b = T(in.real());
    Builder<T> list(in, s);
    const int routine = in.pick(7);
    auto &l = routine == 4 ? list.from(ints_menu, 2) : list.from(reals_menu, 2);
    T *r = nullptr;
    int m = n, order = 0;
    bool finite = true;
    const char *name = "a generator (routine 0 to 6 of the switch)";
    switch (routine) {
        case 0: r = call(F(random_uniform), l, n); break;
        case 1: r = call(F(random_normal), l, n); break;
        case 2: r = call(F(random_exponential), l, n); break;
        case 3: r = call(F(random_gamma), l, n, a); break;
        case 4: {
            int *k = call(zorvs_random_poisson, l, n, float(a));
            if (n > 0) result_or_failure(k, name);
            each(k, n, [](int c) { return c >= 0; }, name, "deviate outside its support");
            return;
        }
        case 5: r = call(F(random_beta), l, n, a, b); break;
        default:
            m = in.count(40), order = in.count(6);
            in.fill(s.data, order > 0 ? order * order : 0);
            finite = s.finite(order > 0 ? order * order : 0);
            r = call(F(random_normal_multivariate), l, m, order, static_cast<const T *>(s.data));
            m = m > 0 && order > 0 ? m * order : 0;
    }
    auto support = [&](T x) {
        switch (routine) {
            case 0: return x > 0 && x < 1;
            case 1: return bool(std::isfinite(x));
            case 5: return x >= 0 && x <= 1;
            case 6: return std::isfinite(x) || !finite;
            default: return x >= 0;
        }
    };
    if (m > 0) result_or_failure(r, name);
    each(r, m, support, name, "deviate outside its support");
}

}  // namespace zorvs_fuzz::random

ZORVS_FUZZ_TARGET(random)
