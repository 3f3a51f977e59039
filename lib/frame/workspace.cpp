// workspace.cpp - the blocks a routine takes for its work arrays and its
// outputs, owned by the routine's frame on the error stack.
//
// Each block is recorded with the frame on top when it was taken.  The pop of
// that frame ends it: a work array is freed; an output is handed over through
// the caller's address when the call succeeded, else freed with the address
// left as it was; an allocated static result is freed and nulled when the
// call failed.  The unwinding after a trap goes through the same pop, so a
// body that a trap abandons loses nothing but its static result, which the
// bracket returns as it stands.  No destructor takes part, so a longjmp past
// the body skips nothing that matters.
//
// The records are a table that grows by doubling and is never given back; it
// is obtained with realloc outside the counted allocations, so that a test
// that fails the n-th allocation still counts only the routines' blocks.

#include <cstdlib>
#include <cstring>

#include "frame/error_stack.hpp"
#include "frame/frame.hpp"

namespace zorvs {

namespace {

bool has_failed(const WorkBlock &w, int latest) {
    switch (w.failure) {
        case Failure::above_warning: return latest > 3;
        case Failure::above_warning_but_immediate: return w.frame->type > 3 && w.frame->type != 6;
    }
    return true;
}

}  // namespace

void *tracked_block(std::size_t bytes, BlockUse use, Failure failure, void *slot,
                    void (*store)(void *slot, void *block)) {
    ErrorStack &s = error_stack;
    if (s.work_count == s.work_capacity) {
        int capacity = s.work_capacity ? 2 * s.work_capacity : 16;
        void *grown = std::realloc(s.work, static_cast<std::size_t>(capacity) * sizeof(WorkBlock));
        if (!grown) return nullptr;
        s.work = static_cast<WorkBlock *>(grown);
        s.work_capacity = capacity;
    }
    void *block = raw_allocate(bytes);
    if (!block) return nullptr;
    s.work[s.work_count++] = WorkBlock{block, s.top(), slot, store, use, failure};
    return block;
}

void *workspace_block(std::size_t bytes) {
    return tracked_block(bytes, BlockUse::work, Failure::above_warning, nullptr, nullptr);
}

void workspace_free(void *block) {
    if (!block) return;
    ErrorStack &s = error_stack;
    for (int k = s.work_count - 1; k >= 0; --k) {
        if (s.work[k].block != block) continue;
        std::free(block);
        std::memmove(&s.work[k], &s.work[k + 1], static_cast<std::size_t>(s.work_count - 1 - k) * sizeof(WorkBlock));
        --s.work_count;
        return;
    }
}

void close_work(const ErrorFrame *t, int latest, bool trapped) {
    ErrorStack &s = error_stack;
    while (s.work_count > 0 && s.work[s.work_count - 1].frame >= t) {
        const WorkBlock w = s.work[--s.work_count];
        switch (w.use) {
            case BlockUse::work:
                std::free(w.block);
                break;
            case BlockUse::result:
                // After a trap the bracket returns the result as it stands.
                if (!trapped && has_failed(w, latest)) {
                    std::free(w.block);
                    w.store(w.slot, nullptr);
                }
                break;
            case BlockUse::output:
                if (!trapped && !has_failed(w, latest))
                    w.store(w.slot, w.block);
                else
                    std::free(w.block);
                break;
        }
    }
}

}  // namespace zorvs
