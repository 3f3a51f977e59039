// describe_target.cpp - one-way tables, simple statistics, normal-sample
// inference, covariances, ranks, permutations, transposition and the index
// of the largest value, on any sizes, strides, data and keyword lists:
// counts that add up, variances not negative, p-values in [0, 1],
// correlations in [-1, 1], ranks within 1..n.
#include "fuzz_input.hpp"

namespace zorvs_fuzz::describe {

const Item table_menu[] = {{ZORVS_DATA_BOUNDS, "oo"}, {ZORVS_KNOWN_BOUNDS, "rr"}, {ZORVS_CUTPOINTS, "x"},
    {ZORVS_CLASS_MARKS, "x"}, {ZORVS_RETURN_USER, "o"}};
const Item simple_menu[] = {{ZORVS_CONFIDENCE_MEANS, "r"}, {ZORVS_CONFIDENCE_MEANS_ADR, "s"},
    {ZORVS_CONFIDENCE_VARIANCES, "r"}, {ZORVS_CONFIDENCE_VARIANCES_ADR, "s"}, {ZORVS_FREQUENCIES, "X"},
    {ZORVS_WEIGHTS, "X"}, {ZORVS_MEDIAN, ""}, {ZORVS_MEDIAN_AND_SCALE, ""}, {ZORVS_MISSING_LISTWISE, ""},
    {ZORVS_MISSING_ELEMENTWISE, ""}, {ZORVS_X_COL_DIM, "d"}, {ZORVS_STAT_COL_DIM, "d"}, {ZORVS_RETURN_USER, "o"}};
const Item one_sample_menu[] = {{ZORVS_CONFIDENCE_MEANS, "r"}, {ZORVS_CONFIDENCE_MEANS_ADR, "s"},
    {ZORVS_CONFIDENCE_VARIANCES, "r"}, {ZORVS_CONFIDENCE_VARIANCES_ADR, "s"}, {ZORVS_HYPOTHESIZED_MEAN, "r"},
    {ZORVS_HYPOTHESIZED_VARIANCE, "r"}, {ZORVS_RETURN_USER, "o"}};
const Item two_sample_menu[] = {{ZORVS_CONFIDENCE_MEANS, "r"}, {ZORVS_CONFIDENCE_MEANS_ADR, "s"},
    {ZORVS_CONFIDENCE_VARIANCES, "r"}, {ZORVS_CONFIDENCE_VARIANCES_ADR, "s"}, {ZORVS_HYPOTHESIZED_DIFFERENCE, "r"},
    {ZORVS_HYPOTHESIZED_RATIO, "r"}, {ZORVS_RETURN_USER, "o"}};
const Item covariances_menu[] = {{ZORVS_COVARIANCE_MATRIX, ""}, {ZORVS_CORRECTED_SSCP, ""},
    {ZORVS_CORRELATION_MATRIX, ""}, {ZORVS_FREQUENCIES, "X"}, {ZORVS_WEIGHTS, "X"}, {ZORVS_POOLED_GROUPS, "dn"},
    {ZORVS_MISSING_LISTWISE, ""}, {ZORVS_MISSING_ELEMENTWISE, ""}, {ZORVS_X_COL_DIM, "d"}, {ZORVS_COV_COL_DIM, "d"},
    {ZORVS_X_MEAN, "a"}, {ZORVS_X_MEAN_USER, "o"}, {ZORVS_PAIR_COUNTS, "a"}, {ZORVS_PAIR_COUNTS_USER, "o"},
    {ZORVS_RETURN_USER, "o"}};
const Item ranks_menu[] = {{ZORVS_AVERAGE_TIE, ""}, {ZORVS_LOWEST, ""}, {ZORVS_HIGHEST, ""}, {ZORVS_RANDOM_SPLIT, ""},
    {ZORVS_RANKS, ""}, {ZORVS_BLOM_SCORES, ""}, {ZORVS_TUKEY_SCORES, ""}, {ZORVS_VAN_DER_WAERDEN_SCORES, ""},
    {ZORVS_SAVAGE_SCORES, ""}, {ZORVS_FUZZ, "r"}, {ZORVS_FUZZ_ADR, "s"}, {ZORVS_RETURN_USER, "o"}};
const Item permute_menu[] = {{ZORVS_RETURN_USER, "o"}};

template <class T>
void one(Input &in, Store<T> &s) {
    const int n = in.count(120), nv = in.count(8);
    in.fill(s.data, 4200);
    in.fill_ints(s.ints, 400, -2, 12);
    Builder<T> b(in, s);
    const bool finite = s.finite(4200);
    switch (in.pick(9)) {
        case 0: {
            const int cells = in.count(30);
            T *t = call(F(table_oneway), b.from(table_menu, 3), n, s.data, cells);
            double sum = 0;
            for (int j = 0; t && zorvs_error_type() < 3 && j < cells; ++j)
                require(t[j] >= 0, "table_oneway", "negative count", sum += t[j]);
            if (t && zorvs_error_type() < 3) require(sum <= n, "table_oneway", "more counts than observations", sum);
            break;
        }
        case 1: {
            auto &l = b.from(simple_menu, 4);
            T *t = call(F(simple_statistics), l, n, nv, s.data);
            if (!l.has(ZORVS_STAT_COL_DIM) && !l.has(ZORVS_RETURN_USER))  // variances, standard deviations
                each(t ? t + nv : nullptr, 2 * nv, [](T v) { return !(v < 0); }, "simple_statistics", "spread below 0");
            break;
        }
        case 2: {
            T *r = call(F(normal_one_sample), b.from(one_sample_menu, 4), n, s.data);
            result_or_failure(r, "normal_one_sample");
            if (r && !failed()) {
                require(!(r[2] < 0), "normal_one_sample", "negative variance", r[2]);
                for (int k : {10, 11, 12, 14, 15, 16}) probability(r[k], "normal_one_sample", !finite);
            }
            break;
        }
        case 3: {
            const int n2 = in.count(120);
            T *r = call(F(normal_two_sample), b.from(two_sample_menu, 4), n, s.data, n2, s.data + 2000);
            result_or_failure(r, "normal_two_sample");
            if (r && !failed()) {
                for (int k : {4, 5, 7}) require(!(r[k] < 0), "normal_two_sample", "negative variance", r[k]);
                for (int k : {12, 13, 14, 19, 20, 21, 27, 28, 29}) probability(r[k], "normal_two_sample", !finite);
            }
            break;
        }
        case 4: {
            auto &l = b.from(covariances_menu, 5);
            T *r = call(F(covariances), l, n, nv, s.data);
            const bool plain = r && !l.has(ZORVS_COV_COL_DIM) && !l.has(ZORVS_RETURN_USER);
            if (plain && l.has(ZORVS_CORRELATION_MATRIX))
                each(r, nv * nv, [](T c) { return !(std::fabs(c) > 1); }, "covariances", "correlation outside [-1, 1]");
            else if (plain && !l.has(ZORVS_POOLED_GROUPS))
                for (int j = 0; !failed() && j < nv; ++j)
                    require(!(r[j * nv + j] < 0), "covariances", "negative variance", r[j * nv + j]);
            break;
        }
        case 5: {
            auto &l = b.from(ranks_menu, 4);
            T *r = call(F(ranks), l, n, s.data);
            if (!l.has(ZORVS_BLOM_SCORES) && !l.has(ZORVS_TUKEY_SCORES) && !l.has(ZORVS_VAN_DER_WAERDEN_SCORES) &&
                !l.has(ZORVS_SAVAGE_SCORES))
                each(r, n, [&](T v) { return std::isnan(v) || (v >= 1 && v <= n); }, "ranks", "rank outside 1..n");
            break;
        }
        case 6: {
            const int m = in.count(40), how = in.pick(6);
            const int low = in.one_in(4) ? -1 : 0;  // read first, as clang reads arguments
            in.fill_ints(s.ints, 1600, low, m > 0 ? m - 1 + in.one_in(8) : 1);
            auto &l = b.from(permute_menu, 1);
            if (how < 3) call(F(permute_vector), l, m, s.data, s.ints, how);
            else call(F(permute_matrix), l, m, nv, s.data, s.ints, how);
            break;
        }
        case 7: {
            const int rows = in.count(40), columns = in.count(40);
            F(m1ran)(rows, columns, s.data, in.one_in(2) ? s.data : s.out[0]);
            zorvs_i_m1ran(rows, columns, s.ints, s.int_out[0]);
            break;
        }
        default: {
            const int stride = in.pick(9) - 4;
            int index = -7;
            F(maximum_index)(n, s.data + 1000, stride, &index);
            require(index == -7 || index == -1 || (index >= 0 && index < n), "maximum_index", "index outside", index);
        }
    }
}

}  // namespace zorvs_fuzz::describe

ZORVS_FUZZ_TARGET(describe)
