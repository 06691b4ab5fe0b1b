// SPDX-License-Identifier: MIT
#include "Plexor_io/Parallel_coms.h"

#include "Coms_funcs/Intensity_coms.h"
#include "Coms_funcs/K_cliques.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "Plexor_io/Find_coms.h"
#include "Plexor_io/Level_log.h"
#include "parallel/Parallel_percolation.h"
#include "parallel/Pipeline.h"

#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace cpm {

namespace {

std::vector<std::uint32_t> Descending(std::uint32_t largest) {
    std::vector<std::uint32_t> ks;
    for (std::uint32_t k = largest; k > 2; --k) {
        ks.push_back(k);
    }
    return ks;
}

class Level_work : public Piece_work {
public:
    Level_work(Parallel_coms_input const& input, std::vector<std::uint32_t> const& ks,
               unsigned n_threads, Run_files& files)
        : input_(input), ks_(ks), files_(files), levels_(ks.size()) {
        for (unsigned thread = 0; thread < n_threads; ++thread) {
            threads_.push_back(std::make_unique<Own>(files.place, input.context));
        }
        if (!Intensity()) {
            ranked_.emplace(Cliques_to_rank(input.found), input.context.n_nodes);
            percolation_.emplace(input.found, *ranked_, input.edges, ks, n_threads);
        }
    }

    void Prepare(std::size_t place, unsigned thread, Progress& progress) override {
        if (Intensity()) {
            From_k_cliques(place, thread, progress);
        } else {
            percolation_->Walk(place, thread, progress);
        }
    }
    void Join(std::size_t place, unsigned, Progress& progress) override {
        if (!Intensity()) {
            percolation_->Join(place, progress);
        }
    }
    void Finish(std::size_t place, unsigned thread, Progress& progress) override {
        if (!Intensity()) {
            Communities const coms = percolation_->Take(place);
            Begin(place, progress);
            Write(coms, place, thread);
        }
    }
    /// Whether a level has come far enough to say something.
    bool Has_words(std::size_t place) const { return levels_[place] != nullptr; }
    /// The level has its turn: says what there is to be said.
    void Tell(std::size_t place, Progress& progress) {
        std::unique_ptr<Level> const level = std::move(levels_[place]);
        level->log.Tell(progress, files_.console);
        std::ranges::move(level->not_written, std::back_inserter(files_.not_written));
    }

private:
    // What a level has to say.
    struct Level {
        explicit Level(Progress& progress) : log(progress) {}
        Level_log log;
        std::vector<std::string> not_written;
    };
    // What a thread has to itself.
    struct Own {
        Own(Result_place const& whole, Level_context const& context)
            : place(whole.Another()), writer(context) {}
        Result_place place;
        Level_writer writer;
    };

    bool Intensity() const { return input_.context.run.intensity; }

    void Begin(std::size_t place, Progress& progress) {
        levels_[place] = std::make_unique<Level>(progress);
    }
    Run_files Files(std::size_t place, unsigned thread) {
        return {threads_[thread]->place, files_.com_flag, files_.alap_szoveg,
                levels_[place]->log.Console()};
    }
    void Write(Communities const& coms, std::size_t place, unsigned thread) {
        Run_files files = Files(place, thread);
        threads_[thread]->writer.Write(coms, {files, ks_[place]});
        Keep_failures(place, files);
    }
    void Keep_failures(std::size_t place, Run_files& files) {
        std::ranges::move(files.not_written, std::back_inserter(levels_[place]->not_written));
    }
    void From_k_cliques(std::size_t place, unsigned thread, Progress& progress) {
        Begin(place, progress);
        Run_files files = Files(place, thread);
        Communities const coms =
            Coms_from_k_cliques(input_.found.cliques, input_.links, input_.context,
                                {files, ks_[place]}, levels_[place]->log);
        Keep_failures(place, files);
        Write(coms, place, thread);
    }

    Parallel_coms_input const& input_;
    std::vector<std::uint32_t> const& ks_;
    Run_files& files_;
    std::optional<Ranked_cliques> ranked_;
    std::optional<Parallel_percolation> percolation_;
    std::vector<std::unique_ptr<Own>> threads_;
    std::vector<std::unique_ptr<Level>> levels_; ///< by place
};

} // namespace

void Find_all_coms(Parallel_coms_input const& input, unsigned n_threads, Run_files& files,
                   Progress& progress) {
    std::vector<std::uint32_t> const ks = Descending(input.largest_clique);
    Level_work work(input, ks, n_threads, files);
    // A level that waits holds its communities, one under way the lists of its thread.
    Pipeline pipeline(work, ks.size(), n_threads, std::size_t{2} * n_threads);
    for (std::size_t place = 0; place < ks.size(); ++place) {
        bool const by_overlaps = !input.context.run.intensity;
        if (by_overlaps) {
            progress.Level_began(ks[place], input.largest_clique);
        }
        auto const tell = [&] {
            if (by_overlaps) {
                progress.Level_found();
            }
            work.Tell(place, progress);
        };
        try {
            pipeline.Next(progress);
        } catch (std::exception const&) {
            if (work.Has_words(place)) {
                tell();
            }
            throw;
        }
        tell();
    }
}

} // namespace cpm
