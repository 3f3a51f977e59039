// The workspace and the output pairs: blocks a routine takes are ended by the
// pop of its frame, on success, on failure and after a trap; an output is
// handed over only when the call succeeded, and its address is left as it was
// otherwise.
#include "support/tables.hpp"

#include "frame/error_stack.hpp"

namespace {

using zorvs_test::CodeLog;
using zorvs_test::Quiet;

int blocks() { return zorvs::error_stack.work_count; }

// Read through a volatile, so that the compiler cannot see the bad address.
double *volatile invalid_pointer = reinterpret_cast<double *>(static_cast<std::uintptr_t>(16));

// A keyword routine with a result and one optional output, both output
// pairs, and a work array: the values 1 to n in the result, their squares in
// ZORVS_RESIDUAL (address of a pointer) or ZORVS_RESIDUAL_USER (array).
//   ZORVS_RETURN_USER, array      the result in the caller's array
//   ZORVS_MAX_ITERATIONS, type    raise (type, 99960) once the outputs are written
//   ZORVS_MEDIAN, flag            if 1, a WARNING_IMMEDIATE does not fail the call
//   ZORVS_LEVERAGE                fault once the blocks are taken
// n below 1 raises (5, 99961) and gives the result up, caller storage too.
struct Seen { int blocks_in_body = -1; };
Seen seen;
double *lv_outputs = nullptr;

void l_outputs(int n, va_list *list) {
    zorvs::KeywordReader kw(list, 1);
    int raise_type = 0;
    bool keep_immediate = false, fault = false;
    double *user_result = nullptr, *user_squares = nullptr;
    double **squares_address = nullptr;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
            case ZORVS_RETURN_USER: user_result = kw.pointer<double>(); break;
            case ZORVS_RESIDUAL: squares_address = kw.pointer<double *>(); break;
            case ZORVS_RESIDUAL_USER: user_squares = kw.pointer<double>(); break;
            case ZORVS_MAX_ITERATIONS: raise_type = kw.integer(); break;
            case ZORVS_MEDIAN: keep_immediate = kw.integer() != 0; break;
            case ZORVS_LEVERAGE: fault = true; break;
            default: kw.unknown(k); return;
        }
    }
    // The rule of failure is the routine's, the same for all its outputs.
    const zorvs::Failure rule =
        keep_immediate ? zorvs::Failure::above_warning_but_immediate : zorvs::Failure::above_warning;
    zorvs::OutputPair<double> result(lv_outputs, rule), residual(rule);
    if (user_result) result.take_user(user_result);
    if (squares_address) residual.take_address(squares_address);
    if (user_squares) residual.take_user(user_squares);
    if (n < 1) {
        zorvs_e1sti(1, n);
        zorvs_ermes(5, 99961);
        result.drop();
        return;
    }
    if (!result.obtain(n, "n") || !residual.obtain(n, "n")) return;
    double *work = zorvs::workspace<double>(n, "n");
    if (!work) return;
    double *r = result.data(), *squares = residual.data();
    seen.blocks_in_body = blocks();
    if (fault) *invalid_pointer = 1;
    for (int i = 0; i < n; ++i) work[i] = i + 1;
    for (int i = 0; i < n; ++i) r[i] = work[i];
    if (squares)
        for (int i = 0; i < n; ++i) squares[i] = work[i] * work[i];
    if (raise_type) zorvs_e1mes(raise_type, 99960, "raised on request");
}

double *test_outputs(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "test_outputs", lv_outputs, l_outputs(n, &list));
}

// An outer routine with a work array of its own that calls test_outputs with
// the arguments given, and notes the blocks it sees around the call.
struct Outer { double *inner_result = nullptr; int blocks_before = -1, blocks_after = -1; double own_first = 0; };
Outer outer;
double *lv_outer = nullptr;
void l_outer(double **address, bool fault) {
    double *own = zorvs::workspace<double>(2, "own");
    own[0] = 42;
    outer.blocks_before = blocks();
    outer.inner_result = fault ? test_outputs(3, ZORVS_RESIDUAL, address, ZORVS_LEVERAGE, 0)
                               : test_outputs(3, ZORVS_RESIDUAL, address, 0);
    outer.blocks_after = blocks();
    outer.own_first = own[0];
}
double *test_outer(double **address, bool fault) {
    return zorvs::keyword_routine("test_outer", lv_outer, [&] { l_outer(address, fault); });
}

class Workspace : public ::testing::Test {
protected:
    void SetUp() override {
        zorvs_e1mes(0, 0, nullptr);
        zorvs_error_options(ZORVS_SIGNAL_TRAPPING_ON, 0);
        seen = Seen{};
    }
    void TearDown() override { zorvs::allocation_failure_countdown = 0; }
};

// The storage of each output, the type raised once they are written, and
// what comes back: the result (own block, caller's array or null) and the
// optional output (handed over, written into the caller's array, or not
// written at all).
enum class Storage { own, user, none };
enum class Back { own_block, user_array, null, unwritten };
struct Case {
    const char *name;
    Storage result, output;
    int raise_type;
    bool keep_immediate;
    Back result_back, output_back;
};

const Case contract_cases[] = {
    {"clean call hands both over", Storage::own, Storage::own, 0, false, Back::own_block, Back::own_block},
    {"a warning fails nothing", Storage::own, Storage::own, 3, false, Back::own_block, Back::own_block},
    {"fatal frees both", Storage::own, Storage::own, 4, false, Back::null, Back::unwritten},
    {"terminal frees both", Storage::own, Storage::own, 5, false, Back::null, Back::unwritten},
    {"immediate warning fails by default", Storage::own, Storage::own, 6, false, Back::null, Back::unwritten},
    {"immediate warning kept by its rule", Storage::own, Storage::own, 6, true, Back::own_block, Back::own_block},
    {"fatal immediate fails under that rule too", Storage::own, Storage::own, 7, true, Back::null, Back::unwritten},
    {"caller storage stays after fatal", Storage::user, Storage::user, 4, false, Back::user_array,
     Back::user_array},
    {"caller's result, own output, fatal", Storage::user, Storage::own, 4, false, Back::user_array,
     Back::unwritten},
    {"own result, caller's output, fatal", Storage::own, Storage::user, 4, false, Back::null, Back::user_array},
    {"output not asked for", Storage::own, Storage::none, 0, false, Back::own_block, Back::unwritten},
};

TEST_F(Workspace, OutputPairsAreHandedOverOnlyWhenTheCallSucceeds) {
    Quiet q;
    for (const Case &c : contract_cases) {
        SCOPED_TRACE(c.name);
        double user_result[3] = {0, 0, 0}, user_output[3] = {0, 0, 0};
        double sentinel = -1;
        double *address = &sentinel;
        double *result_arg = c.result == Storage::user ? user_result : nullptr;
        const int keep = c.keep_immediate ? 1 : 0;
        double *r = nullptr;
        // ZORVS_RETURN_USER with a null array asks for no caller storage.
        if (c.output == Storage::own)
            r = test_outputs(3, ZORVS_RETURN_USER, result_arg, ZORVS_RESIDUAL, &address, ZORVS_MAX_ITERATIONS,
                             c.raise_type, ZORVS_MEDIAN, keep, 0);
        else if (c.output == Storage::user)
            r = test_outputs(3, ZORVS_RETURN_USER, result_arg, ZORVS_RESIDUAL_USER, user_output,
                             ZORVS_MAX_ITERATIONS, c.raise_type, ZORVS_MEDIAN, keep, 0);
        else
            r = test_outputs(3, ZORVS_RETURN_USER, result_arg, ZORVS_MAX_ITERATIONS, c.raise_type, ZORVS_MEDIAN,
                             keep, 0);

        // The work array, and each output the routine allocated.
        EXPECT_EQ(seen.blocks_in_body, 1 + (c.result == Storage::own) + (c.output == Storage::own));
        EXPECT_EQ(blocks(), 0);
        // What came back: the result, and the optional output with the value
        // the body left in its third element (9, or the sentinel's -1).
        const Back result_back = !r ? Back::null : r == user_result ? Back::user_array : Back::own_block;
        const Back output_back = address == nullptr ? Back::null
                                 : address != &sentinel ? Back::own_block
                                 : user_output[2] == 9.0 ? Back::user_array : Back::unwritten;
        EXPECT_EQ(result_back, c.result_back);
        EXPECT_EQ(output_back, c.output_back);
        EXPECT_TRUE(!r || r[2] == 3.0);
        EXPECT_TRUE(address == &sentinel ? sentinel == -1.0 : address[2] == 9.0);
        if (result_back == Back::own_block) std::free(r);
        if (output_back == Back::own_block) std::free(address);
    }
}

// The n-th allocation fails: the result, the output, the work array.  The
// message names the count; nothing is handed over, nothing stays taken.
TEST_F(Workspace, FailedAllocationHandsNothingOver) {
    Quiet q;
    for (int nth = 1; nth <= 3; ++nth) {
        SCOPED_TRACE(nth);
        double sentinel = -1;
        double *address = &sentinel;
        zorvs::allocation_failure_countdown = nth;
        EXPECT_EQ(test_outputs(4, ZORVS_RESIDUAL, &address, 0), nullptr);
        zorvs::allocation_failure_countdown = 0;
        EXPECT_EQ(zorvs_test::slots("i1=4 l1=n"), "i1=4 l1=n");
        EXPECT_EQ(zorvs_error_code(), 201);
        EXPECT_EQ(address, &sentinel);
        EXPECT_EQ(blocks(), 0);
    }
    // Giving the result up returns null for caller storage too, left as it was.
    double mine[2] = {7, 7};
    EXPECT_TRUE(test_outputs(0, ZORVS_RETURN_USER, mine, 0) == nullptr && zorvs_error_code() == 99961 && mine[0] == 7);
}

TEST_F(Workspace, AnInnerPopEndsOnlyTheInnerBlocks) {
    double *address = nullptr;
    test_outer(&address, false);
    EXPECT_EQ(outer.blocks_before, 1);
    EXPECT_EQ(outer.blocks_after, 1);  // the outer work array, still in use
    EXPECT_EQ(outer.own_first, 42.0);
    EXPECT_EQ(blocks(), 0);
    ASSERT_NE(outer.inner_result, nullptr);
    ASSERT_NE(address, nullptr);  // handed over at the inner pop
    EXPECT_EQ(address[1], 4.0);
    std::free(outer.inner_result);
    std::free(address);
}

TEST_F(Workspace, ValueFramesAndEarlyFrees) {
    // A value routine's in-line pop ends the blocks of its frame as well.
    zorvs::push_value_frame("value_routine");
    double *a = zorvs::workspace<double>(std::size_t{8});
    int *b = zorvs::workspace<int>(3, "n");
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(blocks(), 2);
    zorvs::workspace_free(a);  // before the pop; the other block stays
    EXPECT_EQ(blocks(), 1);
    b[2] = 1;
    zorvs::pop_value_frame("value_routine");
    EXPECT_EQ(blocks(), 0);
    // Many blocks in one frame: the record table grows.
    zorvs_e1psh("many_blocks");
    for (int k = 0; k < 100; ++k) ASSERT_NE(zorvs::workspace<char>(k + 1, "k"), nullptr);
    EXPECT_EQ(blocks(), 100);
    zorvs_e1pop("many_blocks");
    EXPECT_EQ(blocks(), 0);
}

// A trap leaves the bracket by longjmp: the pop that follows frees the work
// array and the output, leaves the address unwritten and returns the result
// as it stands.  The library's handler is in force inside the bracket, so
// the test runs under the address sanitizer too, whose leak check then
// covers the unwinding.
TEST_F(Workspace, TrapEndsTheBlocksOfTheAbandonedBody) {
    Quiet q;
    CodeLog codes;
    double sentinel = -1;
    double *address = &sentinel;
    double *r = test_outputs(3, ZORVS_RESIDUAL, &address, ZORVS_LEVERAGE, 0);
    EXPECT_TRUE(codes.has(5, 511));
    EXPECT_TRUE(codes.has(5, 102));
    EXPECT_EQ(seen.blocks_in_body, 3);
    EXPECT_EQ(blocks(), 0);
    EXPECT_EQ(address, &sentinel);
    EXPECT_NE(r, nullptr);  // the caller's, as the bracket returns it
    std::free(r);

    // In a nested call the inner bracket ends only the inner blocks.
    address = &sentinel;
    test_outer(&address, true);
    EXPECT_EQ(outer.blocks_after, 1);
    EXPECT_EQ(outer.own_first, 42.0);
    EXPECT_EQ(blocks(), 0);
    EXPECT_EQ(address, &sentinel);
    std::free(outer.inner_result);
}

}  // namespace
