// SPDX-License-Identifier: MIT
// Maximal cliques of a small graph under exclusions, by branching with pivots on bit rows.
//
// Takes    candidates with their links, excluded nodes with their links to candidates.
// Leaves   each set S of candidates, two by two linked, such that no other candidate and no
//          excluded node is linked with all of S.
// Order    lexicographic. The branches are taken in any order; the cliques are sorted at the end,
//          which costs little beside finding them and lets the pivot choose freely.
// Cost     with c candidates, at most 3^(c/3) branches of c/64 words a candidate; what counts in
//          practice is a few branches a clique. Memory: rows, and the cliques of this one problem.
// Tested   Bron_kerbosch_test.cpp (against all subsets of random graphs), Clique_find_test.cpp.
#include "Clique_find/Bron_kerbosch.h"

#include "Clique_find/Clique_limit.h"
#include "support/Cpu_dispatch.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <limits>
#include <numeric>

namespace cpm {

namespace {

constexpr std::size_t steps_a_branch = 16; // beside those for each word looked at
constexpr std::size_t steps_a_member = 16; // of a clique that is recorded

using namespace Bron_kerbosch_sub;
using Word = std::uint64_t;

// Of some rows, how many of the given candidates the one with the most and the one with the fewest
// of them have.
struct Linked_rows {
    Word const* best = nullptr;
    std::size_t most = 0;
    std::size_t fewest = std::numeric_limits<std::size_t>::max();
};

PLEXOR_COUNTS_BITS
void Look_at_rows(std::span<Word const* const> rows, Word const* candidates, std::size_t n,
                  Linked_rows& linked) {
    for (Word const* const row : rows) {
        std::size_t common = 0;
        for (std::size_t w = 0; w < n; ++w) {
            common += static_cast<std::size_t>(std::popcount(row[w] & candidates[w]));
        }
        if (linked.best == nullptr || common > linked.most) {
            linked.best = row;
            linked.most = common;
        }
        linked.fewest = std::min(linked.fewest, common);
    }
}

} // namespace

std::uint64_t Bron_kerbosch_sub::First_candidates(std::span<std::uint32_t const> list) {
    constexpr std::size_t n_first = 4;
    constexpr unsigned bits_each = 16;
    // Stands for all from there on. Such candidates cannot be told apart, so nothing that comes
    // after one of them counts.
    constexpr std::uint32_t largest = 0xFFFF;
    std::uint64_t key = 0;
    bool beyond = false;
    for (std::size_t i = 0; i < n_first; ++i) {
        // A clique that ends here is no beginning of another one: any number will do.
        std::uint32_t const candidate = i < list.size() ? list[i] : 0;
        beyond = beyond || candidate >= largest;
        key = key << bits_each | (beyond ? largest : candidate);
    }
    return key;
}

bool Bron_kerbosch::Start(std::size_t n_candidates, Pace* pace) {
    n_candidates_ = n_candidates;
    n_words_ = (n_candidates + word_bits - 1) / word_bits;
    rows_.clear();
    excluded_.clear();
    if (pace == nullptr) {
        rows_.Resize(n_candidates * n_words_, 0);
    } else { // the rows of a hub take long to clear
        for (std::size_t i = 0; i < n_candidates; ++i) {
            if (pace->Spend(n_words_)) {
                return false;
            }
            rows_.Resize((i + 1) * n_words_, 0);
        }
    }
    words_.found.clear();
    wide_found_.clear();
    wide_order_.clear();
    return true;
}

bool Bron_kerbosch::Drop_excluded(std::size_t least, Pace& pace) {
    Word* kept_end = excluded_.begin();
    for (Word const* row = excluded_.begin(); row != excluded_.end(); row += n_words_) {
        std::size_t links = 0;
        for (std::size_t w = 0; w < n_words_; ++w) {
            links += static_cast<std::size_t>(std::popcount(row[w]));
        }
        if (links >= least) {
            kept_end = std::copy(row, row + n_words_, kept_end);
        }
        if (pace.Spend(n_words_)) {
            return false;
        }
    }
    excluded_.Resize_uninitialised(static_cast<std::size_t>(kept_end - excluded_.begin()));
    return true;
}

bool Bron_kerbosch::Find(Pace* pace, std::size_t max_bytes) {
    words_.found.clear();
    wide_found_.clear();
    wide_order_.clear();
    words_.room = max_bytes;
    words_.all_kept = true;
    if (n_candidates_ == 0) {
        return true;
    }
    if (n_words_ > 1) {
        return Search_wide(pace) && words_.all_kept && Order_wide(pace);
    }
    assert(rows_.size() == n_candidates_ && n_candidates_ <= words_.rows.size());
    std::copy(rows_.begin(), rows_.end(), words_.rows.begin());
    words_.excluded.clear();
    words_.excluded.Append(excluded_);
    Word const all = ~Word{0} << (word_bits - n_candidates_);
    return Search_words(words_, all, pace) && words_.all_kept &&
           Sort_within(words_.found.begin(), words_.found.end(), std::greater<>(), pace);
}

void Bron_kerbosch::Forget() {
    words_.found.Release();
    wide_found_ = {};
    wide_order_ = {};
}

bool Bron_kerbosch::Append_cliques(Node always, Node_set names, std::size_t least,
                                   Set_list& cliques, Pace* pace) {
    assert(names.size() == n_candidates_);
    assert(std::ranges::is_sorted(names, std::less_equal<>()));
    assert(!std::ranges::binary_search(names, always));
    auto const append = [&](auto const& for_each_candidate) {
        clique_.clear();
        bool placed = false;
        for_each_candidate([&](std::size_t i) {
            if (!placed && always < names[i]) {
                clique_.push_back(always);
                placed = true;
            }
            clique_.push_back(names[i]);
        });
        if (!placed) {
            clique_.push_back(always);
        }
        if (clique_.size() > least) {
            cliques.Add(clique_);
        }
        return pace == nullptr || !pace->Spend(clique_.size());
    };
    return std::ranges::all_of(words_.found,
                               [&](Word set) {
                                   return append(
                                       [set](auto const& take) { For_each_from_first(set, take); });
                               }) &&
           std::ranges::all_of(wide_order_, [&](Wide_place const& place) {
               return append([set = wide_found_[place.number]](auto const& take) {
                   std::for_each(set.begin(), set.end(), take);
               });
           });
}

// The same search over rows of several words, until a branch has at most 64 candidates left: what
// remains is then a narrow problem of its own, in which all excluded nodes are alike.
bool Bron_kerbosch::Search_wide(Pace* pace) {
    std::size_t const n = n_words_;
    path_.clear();
    levels_.assign(1, {0, N_excluded()});
    level_excluded_.resize(N_excluded());
    std::iota(level_excluded_.begin(), level_excluded_.end(), 0U);
    level_words_.assign(3 * n, 0);
    for (std::size_t i = 0; i < n_candidates_; ++i) {
        Set_bit(level_words_.data(), i);
    }
    std::size_t depth = 0;
    bool finished = true;
    Open_level(depth);
    while (finished) {
        // A level's words: candidates, tried ones, ones to try. The next level's lie after them.
        level_words_.resize(3 * n * (depth + 2));
        Word* const candidates = level_words_.data() + 3 * n * depth;
        Word* const tried = candidates + n;
        Word* const to_try = tried + n;
        std::size_t w = 0;
        while (w < n && to_try[w] == 0) {
            ++w;
        }
        if (w == n) {
            if (depth == 0) {
                break;
            }
            --depth;
            path_.pop_back();
            levels_.pop_back();
            level_excluded_.resize(levels_.back().excluded_end);
            continue;
        }
        std::size_t const next =
            w * word_bits + static_cast<std::size_t>(std::countl_zero(to_try[w]));
        to_try[w] &= ~First_bit(next);
        candidates[w] &= ~First_bit(next);
        tried[w] |= First_bit(next);
        Word* const next_candidates = to_try + n;
        Word* const next_tried = next_candidates + n;
        std::size_t size = 0;
        Word any_tried = 0;
        for (std::size_t k = 0; k < n; ++k) {
            next_candidates[k] = candidates[k] & Row(next)[k];
            next_tried[k] = tried[k] & Row(next)[k];
            size += static_cast<std::size_t>(std::popcount(next_candidates[k]));
            any_tried |= next_tried[k];
        }
        Level const level = levels_[depth];
        auto const linked_with_next = [&](std::uint32_t e) {
            return (excluded_[e * n + w] & First_bit(next)) != 0;
        };
        if (size == 0) {
            if (any_tried == 0 &&
                std::none_of(
                    level_excluded_.begin() + static_cast<std::ptrdiff_t>(level.excluded_begin),
                    level_excluded_.begin() + static_cast<std::ptrdiff_t>(level.excluded_end),
                    linked_with_next)) {
                narrow_.assign(1, static_cast<std::uint32_t>(next));
                Add_narrow(First_bit(0));
            }
        } else if (size <= word_bits) {
            finished = Narrow_to_words(next_candidates, size, depth, next, pace);
        } else {
            for (std::size_t e = level.excluded_begin; e < level.excluded_end; ++e) {
                if (linked_with_next(level_excluded_[e])) {
                    level_excluded_.push_back(level_excluded_[e]);
                }
            }
            path_.push_back(static_cast<std::uint32_t>(next));
            levels_.push_back({level.excluded_end, level_excluded_.size()});
            Open_level(++depth);
            finished = pace == nullptr || !pace->Spend(n * pivots_.size());
        }
        if (finished && pace != nullptr) {
            finished =
                !pace->Spend(steps_a_branch + 4 * n + level.excluded_end - level.excluded_begin);
        }
    }
    return finished;
}

// Chooses the pivot of a level and with it the candidates to try: none of them when an excluded
// node is linked with all candidates, or when these are one clique, which is added at once.
void Bron_kerbosch::Open_level(std::size_t depth) {
    std::size_t const n = n_words_;
    Word* const candidates = level_words_.data() + 3 * n * depth;
    Word* const tried = candidates + n;
    Word* const to_try = tried + n;
    auto const add_rows = [this](Word const* set) {
        For_each_candidate(set, [this](std::size_t i) { pivots_.push_back(Row(i)); });
    };
    pivots_.clear();
    add_rows(candidates);
    std::size_t const size = pivots_.size();
    add_rows(tried);
    for (std::size_t e = levels_[depth].excluded_begin; e < levels_[depth].excluded_end; ++e) {
        pivots_.push_back(excluded_.data() + level_excluded_[e] * n);
    }
    Linked_rows linked;
    std::span<Word const* const> const rows = pivots_;
    Look_at_rows(rows.first(size), candidates, n, linked);
    bool const one_clique = linked.fewest == size - 1;
    Look_at_rows(rows.subspan(size), candidates, n, linked);
    // A candidate is not linked with itself: only a node outside can be linked with all of them.
    bool const hopeless = linked.most == size;
    if (one_clique && !hopeless) {
        clique_.assign(path_.begin(), path_.end());
        For_each_candidate(candidates,
                           [this](std::size_t i) { clique_.push_back(static_cast<Node>(i)); });
        Add_wide();
    }
    for (std::size_t w = 0; w < n; ++w) {
        to_try[w] = hopeless || one_clique ? 0 : candidates[w] & ~linked.best[w];
    }
}

// Solves what is left after path + next: the `size` candidates in `set`, at most 64.
bool Bron_kerbosch::Narrow_to_words(Word const* set, std::size_t size, std::size_t depth,
                                    std::size_t next, Pace* pace) {
    assert(0 < size && size <= word_bits);
    std::size_t const n = n_words_;
    std::size_t const n_rows = size + levels_[depth].excluded_end - levels_[depth].excluded_begin;
    if (pace != nullptr && pace->Spend(n_rows * (n + size))) {
        return false;
    }
    narrow_.clear();
    narrow_place_.resize(n * word_bits);
    For_each_candidate(set, [this](std::size_t i) {
        narrow_place_[i] = static_cast<std::uint8_t>(narrow_.size());
        narrow_.push_back(static_cast<std::uint32_t>(i));
    });
    Word const all = ~Word{0} << (word_bits - size);
    words_.excluded.clear();
    auto const exclude = [&](Word const* row) {
        Word const links = Narrowed(row, set);
        if (links != 0) {
            words_.excluded.push_back(links);
        }
        return links == all;
    };
    Word const* const tried = set + n;
    bool hopeless = false;
    For_each_candidate(tried, [&](std::size_t i) { hopeless = hopeless || exclude(Row(i)); });
    if (hopeless) {
        return true;
    }
    for (std::size_t e = levels_[depth].excluded_begin; e < levels_[depth].excluded_end; ++e) {
        Word const* const row = excluded_.data() + level_excluded_[e] * n;
        if ((row[next / word_bits] & First_bit(next)) != 0 && exclude(row)) {
            return true;
        }
    }
    for (std::size_t i = 0; i < size; ++i) {
        words_.rows[i] = Narrowed(Row(narrow_[i]), set);
    }
    words_.found.clear();
    if (!Search_words(words_, all, pace)) {
        return false;
    }
    path_.push_back(static_cast<std::uint32_t>(next));
    for (Word const found : words_.found) {
        Add_narrow(found);
        if (pace != nullptr && pace->Spend(steps_a_member * clique_.size())) {
            return false;
        }
    }
    path_.pop_back();
    words_.found.clear();
    return true;
}

// A wide row, cut down to the candidates of the narrow problem.
Bron_kerbosch::Word Bron_kerbosch::Narrowed(Word const* row, Word const* set) const {
    Word narrow = 0;
    for (std::size_t w = 0; w < n_words_; ++w) {
        For_each_from_first(row[w] & set[w], [&](std::size_t i) {
            narrow |= First_bit(narrow_place_[w * word_bits + i]);
        });
    }
    return narrow;
}

// Records the path and a set of the narrow problem.
void Bron_kerbosch::Add_narrow(Word narrow_set) {
    clique_.assign(path_.begin(), path_.end());
    For_each_from_first(narrow_set, [this](std::size_t i) { clique_.push_back(narrow_[i]); });
    Add_wide();
}

// Records the candidates in clique_.
void Bron_kerbosch::Add_wide() {
    // The word of a narrow problem has been counted already.
    std::size_t const bytes = clique_.size() * sizeof(clique_.front()) + sizeof(std::uint64_t);
    if (words_.room < bytes) {
        words_.all_kept = false;
        return;
    }
    words_.room -= bytes;
    std::sort(clique_.begin(), clique_.end());
    wide_found_.Add(clique_);
}

// Sets the order in which the cliques found are listed. Most pairs of cliques differ in their first
// candidates, which one number holds: the lists themselves are rarely looked at.
bool Bron_kerbosch::Order_wide(Pace* pace) {
    wide_order_.clear();
    Check_n_cliques(wide_found_.size());
    for (std::size_t i = 0; i < wide_found_.size(); ++i) {
        wide_order_.push_back(
            {Bron_kerbosch_sub::First_candidates(wide_found_[i]), static_cast<std::uint32_t>(i)});
    }
    auto const less = [&](Wide_place const& a, Wide_place const& b) {
        return a.key != b.key ? a.key < b.key
                              : std::ranges::lexicographical_compare(wide_found_[a.number],
                                                                     wide_found_[b.number]);
    };
    return Sort_within(wide_order_.begin(), wide_order_.end(), less, pace);
}

} // namespace cpm
