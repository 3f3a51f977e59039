#!/usr/bin/python3
"""Hand-made inputs of the tests fuzz target (tests/fuzz/targets/tests_target.cpp)
for messages and lines that the fuzzing campaign's corpus does not reach.
Each file is the bytes the target reads, in its order (fuzz_input.hpp: a
pick reads one byte, a count two (the first not a multiple of 16), a word
four (big-endian), fill() and fill_ints() a word and fill() a style byte;
the generators below repeat theirs to choose seeds).

Run: /usr/bin/python3 tests/data/fuzz/make_crafted_inputs.py
(writes tests/fuzz/corpus/tests/crafted-*)
"""
import os
import struct

OUT = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', '..', 'fuzz', 'corpus', 'tests')
M = (1 << 64) - 1
C = 0x2545F4914F6CDD1D


def xorshift(s):
    s ^= s >> 12
    s ^= (s << 25) & M
    return s ^ (s >> 27)


def fill_ints(seed, n, low, high):
    s, out = ((seed << 1) | 1) & M, []
    for _ in range(n):
        s = xorshift(s)
        out.append(low + (((s * C) & M) >> 33) % (high - low + 1))
    return out


def first_is_nan(seed, style):
    """Whether fill() with this seed and style makes its first value NaN."""
    s = xorshift(((seed << 1) | 1) & M)
    r = (s * C) & M
    return r % 1024 < 1024 // (1 << (style & 7)) // 8 and (r >> 10) % 12 == 0


def word(x):
    return list(struct.pack('>I', x))


seed_df0 = next(s for s in range(1, 10**6) if fill_ints(s, 2, -1, 10) == [1, 1])
seed_groups = next(s for s in range(1, 10**6) if all(c >= 2 for c in fill_ints(s, 3, -1, 10)))
seed_nan = next(s for s in range(1, 10**7) if first_is_nan(s, 0))
D = [0] + word(12345) + [0x07]  # double; data in [-1, 1], rarely awkward
FIT = [0] + word(12345) + [0x17]  # double; data in [-2, 2]


def table(cells):  # 81 cells, each "not real" and its value
    cells = cells + [1] * (81 - len(cells))
    return sum(([1, v] for v in cells), [])


inputs = {
    # one-way analysis of variance: Tukey at a confidence of 0; two groups
    # of one observation (no error degrees of freedom); three groups with
    # Tukey's, Dunn-Sidak's and Scheffe's intervals
    'crafted-anova-tukey-confidence': D + [0, 1, 3] + word(777) + [2, 1, 10, 1, 8, 0, 3],
    'crafted-anova-no-error-df': D + [0, 1, 2] + word(seed_df0) + [1, 1, 12],
    'crafted-anova-tukey': D + [0, 1, 3] + word(seed_groups) + [1, 1, 10],
    'crafted-anova-dunn-sidak': D + [0, 1, 3] + word(seed_groups) + [1, 1, 12],
    'crafted-anova-scheffe': D + [0, 1, 3] + word(seed_groups) + [1, 1, 14],
    # contingency tables: the chi-squared and likelihood-ratio triples; a
    # zero margin; with all statistics, a square table with an empty pair
    # and one with no off-diagonal counts
    'crafted-table-triples': D + [2, 1, 2, 1, 2] + table([5, 3, 2, 6]) + [2, 1, 0, 1, 1],
    'crafted-table-zero-margin': D + [2, 1, 2, 1, 2] + table([0, 0, 0, 5]) + [0],
    'crafted-table-empty-pair': D + [2, 1, 3, 1, 3] + table([5, 0, 2, 0, 5, 3, 1, 2, 5]) + [1, 1, 8],
    'crafted-table-diagonal': D + [2, 1, 2, 1, 2] + table([5, 0, 0, 5]) + [1, 1, 8],
    # goodness of fit of 10 observations in 3 categories: small expected
    # counts (the logistic distribution); an expected count given below 0
    'crafted-fit-small-expected': FIT + [3, 1, 3, 1, 10, 0, 1, 1, 0, 0, 1],
    'crafted-fit-negative-expected': FIT + [3, 1, 3, 1, 10, 0, 2, 1, 0, 0, 1, 3, 0, 0],
    # rank sum: two observations in all; a first sample all missing
    'crafted-rank-sum-too-small': D + [5, 1, 1, 1, 1, 0],
    'crafted-rank-sum-all-missing': [0] + word(seed_nan) + [0x00] + [5, 1, 1, 1, 5, 0],
}
for name, data in inputs.items():
    with open(os.path.join(OUT, name), 'wb') as f:
        f.write(bytes(data))
