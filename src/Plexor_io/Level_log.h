// SPDX-License-Identifier: MIT
// Level_log: what a level says while a thread makes it, told again when its turn has come: the text
// for the console and the reports to a Progress, in the order in which they came.
#ifndef PLEXOR_LEVEL_LOG_H
#define PLEXOR_LEVEL_LOG_H

#include "Plexor_io/Console.h"
#include "Plexor_io/Text_sink.h"
#include "support/Progress.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace cpm {

/// As a progress it takes the reports of levels by intensity. Reports of places that follow each
/// other are one entry: there is one a k-clique.
class Level_log : public Progress {
public:
    /// `stop` is asked at each Tick(), and must outlive the recording.
    explicit Level_log(Progress& stop) : stop_(&stop) {}

    /// Takes the text.
    cpm::Console& Console() { return console_; }

    void Tick() override { stop_->Tick(); }
    void K_clique_search_began(std::uint32_t k, double intensity) override;
    void K_clique_search_at(std::uint32_t to_do, std::uint32_t total) override;
    void K_clique_search_done(std::uint32_t n_k_cliques) override;
    void K_cliques_joining_began(std::uint32_t k, double intensity) override;
    void K_cliques_joining_at(std::uint32_t to_do, std::uint32_t total) override;

    /// Tells it all.
    void Tell(Progress& progress, cpm::Console& console);

private:
    enum class Report : std::uint8_t {
        search_began,
        search_at,
        search_done,
        joining_began,
        joining_at
    };
    struct Entry {
        std::size_t text_before; ///< the text up to here comes first
        double intensity;        ///< of a beginning
        std::uint32_t number;    ///< the k, the first number to do, or the number of k-cliques
        std::uint32_t total;     ///< of a place
        std::uint32_t repeats;   ///< so many places, each one less to do than the one before
        Report report;
    };

    void Add(Report report, std::uint32_t number, std::uint32_t total, double intensity);
    static void Tell(Entry const& entry, Progress& progress);

    Progress* stop_;
    Text text_;
    cpm::Console console_{text_};
    std::vector<Entry> entries_;
};

} // namespace cpm

#endif
