// SPDX-License-Identifier: MIT
// Console_progress: prints what a run is doing.
#ifndef PLEXOR_CONSOLE_PROGRESS_H
#define PLEXOR_CONSOLE_PROGRESS_H

#include "Plexor_io/Console.h"
#include "Plexor_io/Text_sink.h"
#include "support/Progress.h"

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
    void Level_began(std::uint32_t k, std::uint32_t largest) override;
    void Level_found() override;
    void K_clique_search_began(std::uint32_t k, double intensity) override;
    void K_clique_search_at(std::uint32_t to_do, std::uint32_t total) override;
    void K_clique_search_done(std::uint32_t n_k_cliques) override;
    void K_cliques_joining_began(std::uint32_t k, double intensity) override;
    void K_cliques_joining_at(std::uint32_t to_do, std::uint32_t total) override;

private:
    void Set_titles(std::string_view title, std::uint32_t k, std::string_view title2,
                    double intensity);
    std::string_view Cliques() const { return search_.directed ? "directed cliques" : "cliques"; }

    Console& console_;
    Clique_search search_;
    Text title_;  ///< of the reports of the search
    Text title2_; ///< its second line, where there is one
};

namespace Coms_report_sub {

/// Writes which k is next and how much is done of the way from the largest clique to 3.
void Report_com_export(std::uint32_t k, std::uint32_t kmax, Text_sink& sink);
/// The number of characters of the decimal form of n.
std::size_t Num_width(std::uint32_t n);

} // namespace Coms_report_sub

} // namespace cpm

#endif
