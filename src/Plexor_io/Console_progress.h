// SPDX-License-Identifier: MIT
// Console_progress: prints what a run is doing.
#ifndef PLEXOR_CONSOLE_PROGRESS_H
#define PLEXOR_CONSOLE_PROGRESS_H

#include "support/Console.h"
#include "support/Progress.h"
#include "support/Text_sink.h"

#include <string_view>

namespace cpm {

class Console_progress : public Progress {
public:
    /// The console must outlive this.
    explicit Console_progress(Console& console) : console_(console) {}

    void Tick() override { console_.Message_done(); }

    void Search_began(Clique_search const& search) override;
    void Nodes_sorted() override;
    void Node_started(std::uint32_t to_do, std::uint32_t total) override;
    void Node_overran(std::uint32_t node, std::uint32_t skipped_in_row,
                      std::uint32_t waiting) override;
    void Remaining_nodes_too_hard() override;
    void Search_done(std::uint32_t n_cliques, bool complete) override;
    void Approximation_began() override;
    void Approximation_done(std::uint64_t n_exact, std::uint64_t n_approximated) override;

private:
    std::string_view Cliques() const { return search_.directed ? "directed cliques" : "cliques"; }

    Console& console_;
    Clique_search search_;
    Text title_; ///< of the reports of the search
};

} // namespace cpm

#endif
