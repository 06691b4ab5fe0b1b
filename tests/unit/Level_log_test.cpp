// SPDX-License-Identifier: MIT
#include "Plexor_io/Level_log.h"

#include "support/Captured_console.h"

#include <gtest/gtest.h>
#include <string>

namespace cpm::test {
namespace {

// What a level by intensity says.
void Say(Progress& progress, Console& console, std::uint32_t n) {
    progress.K_clique_search_began(4, 0.25);
    for (std::uint32_t to_do = n; to_do > 0; to_do -= to_do % 3 == 0 && to_do > 1 ? 2 : 1) {
        progress.K_clique_search_at(to_do, n);
    }
    progress.K_clique_search_done(7);
    console.Put_line(" Writing k-clques to disk.");
    progress.K_cliques_joining_began(4, 0.25);
    progress.K_cliques_joining_at(2, 2);
    console.Put(" between two places ");
    progress.K_cliques_joining_at(1, 2);
    console.Put_line(" done.");
}

TEST(Level_log, Tells_text_and_reports_in_the_order_in_which_they_came) {
    for (std::uint32_t const n : {0U, 1U, 2U, 100U}) {
        Captured_console at_once;
        Say(at_once, at_once, n);
        Captured_console later;
        Progress nobody;
        Level_log log(nobody);
        Say(log, log.Console(), n);
        EXPECT_EQ(later.Output(), "");
        log.Tell(later, later);
        EXPECT_EQ(later.Output(), at_once.Output());
    }
}

TEST(Level_log, Takes_more_text_than_a_console_holds) {
    std::string const line(1000, 'x');
    Captured_console later;
    Progress nobody;
    Level_log log(nobody);
    std::string all;
    for (int i = 0; i < 500; ++i) {
        log.Console().Put(line + "\n");
        all += line + "\n";
    }
    log.Tell(later, later);
    EXPECT_EQ(later.Output(), all);
}

class Given_up : public Progress {
    void Tick() override { throw Cancelled(); }
};

TEST(Level_log, Hands_ticks_on) {
    Given_up progress;
    Level_log log(progress);
    EXPECT_THROW(log.Tick(), Cancelled);
    EXPECT_THROW(log.K_clique_search_at(1, 1), Cancelled);
}

} // namespace
} // namespace cpm::test
