// SPDX-License-Identifier: MIT
#include "Plexor_io/Parallel_coms.h"

#include "Coms_funcs/Intensity_coms.h"
#include "Coms_funcs/K_cliques.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "Plexor_io/Find_coms.h"
#include "Plexor_io/Level_log.h"
#include "parallel/Level_pipeline.h"

#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace cpm {

namespace {

// Writes each level as it is made.
class Writing_taker : public Level_taker {
public:
    Writing_taker(Parallel_coms_input const& input, std::vector<std::uint32_t> const& ks,
                  unsigned n_threads, Run_files& files)
        : input_(input), ks_(ks), files_(files), levels_(ks.size()) {
        for (unsigned thread = 0; thread < n_threads; ++thread) {
            threads_.push_back(std::make_unique<Own>(files.place, input.context));
        }
    }

    void Make_by_intensity(std::size_t place, unsigned thread, Progress& progress) override {
        Begin(place, progress);
        Run_files files = Files(place, thread);
        Communities const coms =
            Coms_from_k_cliques(input_.found.cliques, input_.links, input_.context,
                                {files, ks_[place]}, levels_[place]->log);
        Keep_failures(place, files);
        Write(coms, place, thread);
    }
    void Take(Communities coms, std::size_t place, unsigned thread, Progress& progress) override {
        Begin(place, progress);
        Write(coms, place, thread);
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

    Parallel_coms_input const& input_;
    std::vector<std::uint32_t> const& ks_;
    Run_files& files_;
    std::vector<std::unique_ptr<Own>> threads_;
    std::vector<std::unique_ptr<Level>> levels_; ///< by place
};

} // namespace

void Find_all_coms(Parallel_coms_input const& input, unsigned n_threads, Run_files& files,
                   Progress& progress) {
    std::vector<std::uint32_t> const ks = Levels_down_from(input.largest_clique);
    bool const by_overlaps = !input.context.run.intensity;
    std::optional<Ranked_cliques> ranked;
    if (by_overlaps) {
        ranked = Rank_cliques(input.found, input.context.n_nodes);
    }
    Writing_taker taker(input, ks, n_threads, files);
    Level_pipeline pipeline(taker, {input.found, ranked ? &*ranked : nullptr, input.edges}, ks,
                            n_threads);
    for (std::size_t place = 0; place < ks.size(); ++place) {
        if (by_overlaps) {
            progress.Level_began(ks[place], input.largest_clique);
        }
        auto const tell = [&] {
            if (by_overlaps) {
                progress.Level_found();
            }
            taker.Tell(place, progress);
        };
        try {
            pipeline.Next(progress);
        } catch (std::exception const&) {
            if (taker.Has_words(place)) {
                tell();
            }
            throw;
        }
        tell();
    }
}

} // namespace cpm
