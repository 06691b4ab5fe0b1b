// SPDX-License-Identifier: MIT
#include "Clique_find/Directed_bron_kerbosch.h"

#include "Clique_find/Directed_search.h"

#include <cassert>

namespace cpm {

namespace {

using namespace Directed_bron_kerbosch_sub;
constexpr std::size_t steps_a_link = 4;

} // namespace

bool Directed_bron_kerbosch::Find(Dir_surroundings const& around, Pace* pace,
                                  std::size_t max_bytes) {
    memory_.found.clear();
    memory_.room = max_bytes;
    memory_.all_kept = true;
    if (!Set_up(around, pace)) {
        return false;
    }
    bool finished = false;
    switch (memory_.n_words) {
    case 1:
        finished = Search<1>(memory_).Recurrent_inc_inv_dir(pace);
        break;
    case 2:
        finished = Search<2>(memory_).Recurrent_inc_inv_dir(pace);
        break;
    default:
        finished = Search<0>(memory_).Recurrent_inc_inv_dir(pace);
    }
    return finished && memory_.all_kept;
}

bool Directed_bron_kerbosch::Set_up(Dir_surroundings const& around, Pace* pace) {
    auto const in_time = [pace](std::size_t steps) {
        return pace == nullptr || !pace->Spend(steps);
    };
    assert(0 < around.Centre() && around.Centre() < around.N_places());
    memory_.centre = around.Centre();
    memory_.n_words = Words_for(memory_.centre);
    memory_.rows.clear();
    for (std::size_t i = 1; i <= around.N_places(); ++i) { // the rows of a hub take long to clear
        memory_.rows.Resize(n_kinds * i * memory_.n_words, 0);
        if (!in_time(n_kinds * memory_.n_words)) {
            return false;
        }
    }
    auto const set_link = [&](Place a, Place b, Arcs seen_from_a) {
        assert(a < around.N_places() && b <= memory_.centre && a != b);
        assert(0 < seen_from_a && seen_from_a <= Arc_both);
        Set_bit(Row_in(memory_, a, linked), b);
        if (seen_from_a != Arc_both) {
            Set_bit(Row_in(memory_, a, seen_from_a == Arc_to ? to : from), b);
        }
    };
    for (Place i = 0; i < around.N_places(); ++i) {
        if (i < memory_.centre) {
            set_link(memory_.centre, i, around.Arcs_with(i));
        }
        if (i != memory_.centre) {
            set_link(i, memory_.centre, Reversed(around.Arcs_with(i)));
        }
    }
    for (Local_link const& link : around.Links()) {
        assert(link.candidate < memory_.centre && link.other < memory_.centre);
        set_link(link.candidate, link.other, link.arcs);
        set_link(link.other, link.candidate, Reversed(link.arcs));
        if (!in_time(steps_a_link)) {
            return false;
        }
    }
    for (Local_link const& link : around.Excluded_links()) {
        assert(link.candidate < memory_.centre && memory_.centre < link.other);
        set_link(link.other, link.candidate, Reversed(link.arcs));
        if (!in_time(steps_a_link)) {
            return false;
        }
    }
    return true;
}

} // namespace cpm
