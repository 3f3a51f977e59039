// random_target.cpp - the generators on any count, shape, seed, generator
// option and shuffle table: every deviate in its support (uniforms in
// (0, 1), gamma and exponential ones not negative, beta ones in [0, 1],
// Poisson counts not negative), a result only without failure.
#include "fuzz_input.hpp"

namespace {

template <class T>
zorvs_fuzz::Store<T> store;

template <class T, class V, class P>
void deviates(V *r, int n, P in_support, const char *name) {
    if (n > 0) zorvs_fuzz::result_or_failure(r, name);
    for (int i = 0; r && !zorvs_fuzz::failed() && i < n; ++i)
        if (!in_support(r[i])) zorvs_fuzz::require(false, name, "deviate outside its support", double(r[i]));
}

template <class T>
void one(zorvs_fuzz::Input &in) {
    using zorvs_fuzz::call;
    using zorvs_fuzz::twin;
    auto &s = store<T>;
    s.reset();
    static const zorvs_fuzz::Item reals_menu[] = {{ZORVS_RETURN_USER, "o"}};
    static const zorvs_fuzz::Item ints_menu[] = {{ZORVS_RETURN_USER, "k"}};
    if (in.one_in(4)) zorvs_random_option(in.pick(10) - 1);
    if (in.one_in(4)) zorvs_random_seed_set(in.any_int());
    if (in.one_in(8)) {
        in.fill(s.data, 128);
        twin<T>(zorvs_rnses, zorvs_drnses)(s.data);
    }
    const int n = in.count(300);
    const T a = T(in.real()), b = T(in.real());
    zorvs_fuzz::Builder<T> list(in, s);
    const int routine = in.pick(7);
    auto &l = routine == 4 ? list.from(ints_menu, 2) : list.from(reals_menu, 2);
    T *r = nullptr;
    int *k = nullptr;
    switch (routine) {
        case 0: r = call(twin<T>(zorvs_f_random_uniform, zorvs_d_random_uniform), l, n);
            deviates<T>(r, n, [](T u) { return u > 0 && u < 1; }, "random_uniform"); break;
        case 1: r = call(twin<T>(zorvs_f_random_normal, zorvs_d_random_normal), l, n);
            deviates<T>(r, n, [](T z) { return std::isfinite(z); }, "random_normal"); break;
        case 2: r = call(twin<T>(zorvs_f_random_exponential, zorvs_d_random_exponential), l, n);
            deviates<T>(r, n, [](T e) { return e >= 0; }, "random_exponential"); break;
        case 3: r = call(twin<T>(zorvs_f_random_gamma, zorvs_d_random_gamma), l, n, a);
            deviates<T>(r, n, [](T g) { return g >= 0; }, "random_gamma"); break;
        case 4: k = call(zorvs_random_poisson, l, n, float(a));
            deviates<T>(k, n, [](int c) { return c >= 0; }, "random_poisson"); break;
        case 5: r = call(twin<T>(zorvs_f_random_beta, zorvs_d_random_beta), l, n, a, b);
            deviates<T>(r, n, [](T x) { return x >= 0 && x <= 1; }, "random_beta"); break;
        default: {
            const int m = in.count(40), order = in.count(6);
            const int size = order > 0 ? order * order : 0;
            in.fill(s.data, size);
            bool finite = true;
            for (int i = 0; i < size; ++i) finite = finite && std::isfinite(s.data[i]);
            r = call(twin<T>(zorvs_f_random_normal_multivariate, zorvs_d_random_normal_multivariate), l, m, order,
                     static_cast<const T *>(s.data));
            deviates<T>(r, m > 0 && order > 0 ? m * order : 0, [&](T z) { return std::isfinite(z) || !finite; },
                        "random_normal_multivariate");
        }
    }
    s.free_result(r);
    s.free_result(k);
    s.release();
}

}  // namespace

ZORVS_FUZZ_TWIN_TARGET(one)
