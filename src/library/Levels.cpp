// SPDX-License-Identifier: MIT
#include <plexor/Communities.h>

#include "Coms_funcs/Community_graph.h"
#include "Coms_funcs/Intensity_coms.h"
#include "Coms_funcs/K_cliques.h"
#include "Coms_funcs/Percolation.h"
#include "library/Library_data.h"
#include "library/Public_errors.h"
#include "library/Told.h"
#include "parallel/Level_pipeline.h"
#include "parallel/Thread_count.h"

#include <plexor/Error.h>

#include <utility>
#include <vector>

namespace plexor {

namespace detail {

namespace {

void Find_by_intensity(Level_base const& base, double intensity, Level_data& level,
                       cpm::Progress& progress) {
    cpm::Index_links const& links = base.graph->links;
    cpm::K_clique_list k_cliques;
    cpm::Generate_k_cls_from_cls(base.cliques->found.cliques, links, k_cliques, level.k, intensity,
                                 progress);
    cpm::Intensity_coms_from_k_cliques(std::move(k_cliques), level.coms, links, intensity,
                                       progress);
}

std::shared_ptr<Level_data> New_level(std::shared_ptr<Level_base const> base, std::uint32_t k) {
    auto level = std::make_shared<Level_data>();
    level->base = std::move(base);
    level->k = k;
    return level;
}

// The levels from one k down to 3, made by several threads ahead of Next().
class Levels_ahead : private cpm::Level_taker {
public:
    Levels_ahead(std::shared_ptr<Level_base const> base,
                 std::shared_ptr<cpm::Ranked_cliques const> ranked, std::optional<double> intensity,
                 std::uint32_t first_k, unsigned n_threads)
        : base_(std::move(base)), ranked_(std::move(ranked)), intensity_(intensity),
          ks_(cpm::Levels_down_from(first_k)), levels_(ks_.size()),
          pipeline_(*this, {base_->cliques->found, ranked_.get(), base_->edges}, ks_, n_threads) {}

    std::shared_ptr<Level_data const> Next(cpm::Progress& progress) {
        pipeline_.Next(progress);
        return std::move(levels_[next_++]);
    }

private:
    void Make_by_intensity(std::size_t place, unsigned, cpm::Progress& progress) override {
        levels_[place] = New_level(base_, ks_[place]);
        Find_by_intensity(*base_, *intensity_, *levels_[place], progress);
    }
    void Take(cpm::Communities coms, std::size_t place, unsigned, cpm::Progress&) override {
        levels_[place] = New_level(base_, ks_[place]);
        levels_[place]->coms = std::move(coms);
    }

    std::shared_ptr<Level_base const> base_;
    std::shared_ptr<cpm::Ranked_cliques const> ranked_; ///< none with an intensity
    std::optional<double> intensity_;
    std::vector<std::uint32_t> ks_;
    std::vector<std::shared_ptr<Level_data>> levels_; ///< by place
    std::size_t next_ = 0;
    cpm::Level_pipeline pipeline_; ///< ended first
};

} // namespace

struct Levels_data {
    std::shared_ptr<Level_base const> base;
    Level_options options;
    unsigned n_threads = 1;
    std::uint32_t next_k = 0;
    std::shared_ptr<cpm::Ranked_cliques const> ranked; ///< none with an intensity
    std::unique_ptr<cpm::Percolation> percolation;     ///< of the calling thread
    std::unique_ptr<Levels_ahead> ahead;               ///< as long as Next() gives no error

    void Find(Level_data& level, cpm::Progress& progress) {
        if (options.intensity) {
            Find_by_intensity(*base, *options.intensity, level, progress);
            return;
        }
        if (!percolation) {
            percolation =
                std::make_unique<cpm::Percolation>(base->cliques->found, ranked, base->edges);
        }
        percolation->Coms_from_appr_ovlp_matr(level.coms, level.k, &progress);
    }
};

} // namespace detail

namespace {

using detail::Level_base;
using detail::Level_data;
using detail::Levels_data;

std::shared_ptr<Level_base const> Make_base(Graph const& graph, Cliques const& cliques) {
    auto base = std::make_shared<Level_base>();
    base->graph = graph.Data();
    base->cliques = cliques.Data();
    cpm::Found_cliques const& found = base->cliques->found;
    base->edges =
        cpm::Edge_numbering(base->graph->links, base->graph->n_nodes, found.cliques, found.n_exact);
    return base;
}

// Makes links of what a community hands out, in the direction in which `plexor` writes them: the
// smaller node first, unless only the other direction is a link or none is.
class Links_taken : public cpm::Link_visitor {
public:
    explicit Links_taken(Level_base const& base) : base_(base) {}

    void Numbers(std::span<cpm::Link_number const> numbers) override {
        for (cpm::Link_number const number : numbers) {
            Take(base_.edges.Smaller_end(number), base_.edges.Larger_end(number));
        }
    }
    void All_pairs(cpm::Node_set nodes) override {
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            for (cpm::Node const larger : nodes.subspan(i + 1)) {
                Take(nodes[i], larger);
            }
        }
    }
    std::vector<Edge> Links() && { return std::move(links_); }

private:
    void Take(cpm::Node smaller, cpm::Node larger) {
        cpm::Index_links const& links = base_.graph->links;
        bool const as_it_is = links.Find({smaller, larger}) != links.size();
        links_.push_back(as_it_is ? Edge{smaller, larger} : Edge{larger, smaller});
    }

    Level_base const& base_;
    std::vector<Edge> links_;
};

Distribution Public(cpm::Distribution const& distribution) {
    Distribution copy;
    for (auto const& [value, count] : distribution) {
        copy.push_back({value, count});
    }
    return copy;
}

cpm::Community_part Engine_part(Part part) {
    switch (part) {
    case Part::exact:
        return cpm::Community_part::exact;
    case Part::approximated:
        return cpm::Community_part::approximated;
    default:
        return cpm::Community_part::all;
    }
}

} // namespace

Levels::Levels(Graph const& graph, Cliques const& cliques, Level_options const& options) {
    cpm::Found_cliques const& found = cliques.Data()->found;
    if (options.intensity && graph.Directed()) {
        throw Error(Error::Kind::bad_argument, "an intensity does not go with a directed graph");
    }
    if (options.intensity && found.n_exact < found.cliques.size()) {
        throw Error(Error::Kind::bad_argument, "an intensity needs cliques that are all exact");
    }
    detail::Rethrow_as_public([&] {
        data_ = std::make_unique<Levels_data>();
        data_->base = Make_base(graph, cliques);
        data_->options = options;
        data_->n_threads = cpm::Thread_count(options.threads);
        data_->next_k = cliques.Largest();
        if (!options.intensity) {
            data_->ranked =
                std::make_shared<cpm::Ranked_cliques>(found.cliques, data_->base->graph->n_nodes);
        }
    });
}

Levels::Levels(Levels&&) noexcept = default;
Levels& Levels::operator=(Levels&&) noexcept = default;
Levels::~Levels() = default;

std::optional<Level> Levels::Next() {
    if (data_->next_k < 3) {
        return std::nullopt;
    }
    Level level = data_->n_threads > 1 ? Next_made_ahead() : At(data_->next_k);
    --data_->next_k;
    return level;
}

Level Levels::Next_made_ahead() {
    detail::Told_progress progress(data_->options.progress);
    std::unique_ptr<detail::Levels_ahead>& ahead = data_->ahead;
    try {
        return Level(detail::Rethrow_as_public([&] {
            progress.Level_began(data_->next_k, data_->base->cliques->largest);
            if (!ahead) {
                ahead = std::make_unique<detail::Levels_ahead>(data_->base, data_->ranked,
                                                               data_->options.intensity,
                                                               data_->next_k, data_->n_threads);
            }
            return ahead->Next(progress);
        }));
    } catch (...) {
        ahead.reset();
        throw;
    }
}

Level Levels::At(std::uint32_t k) {
    std::shared_ptr<Level_data> level = detail::New_level(data_->base, k);
    detail::Told_progress progress(data_->options.progress);
    detail::Rethrow_as_public([&] {
        progress.Level_began(k, data_->base->cliques->largest);
        data_->Find(*level, progress);
    });
    return Level(std::move(level));
}

Level::Level(std::shared_ptr<detail::Level_data const> data) : data_(std::move(data)) {}

std::uint32_t Level::K() const {
    return data_->k;
}

std::size_t Level::size() const {
    return data_->coms.size();
}

Nodes Level::operator[](std::size_t community) const {
    return data_->coms.nodes[community];
}

std::size_t Level::Number_of_exact() const {
    return data_->coms.n_exact;
}

std::span<std::uint32_t const> Level::Cliques_of(std::size_t community) const {
    auto const& cliques = data_->coms.cliques;
    return community < cliques.size() ? cliques[community] : std::span<std::uint32_t const>();
}

std::vector<Edge> Level::Links_of(std::size_t community) const {
    Links_taken taken(*data_->base);
    data_->coms.Visit_links(community, taken);
    return std::move(taken).Links();
}

void Level::For_each_overlap(std::function<void(Overlap const&)> const& visit) const {
    cpm::Community_graph graph;
    Prepare_community_graph(data_->coms, graph);
    graph.Walk([&visit](std::uint32_t first, std::span<cpm::Overlap const> row) {
        for (cpm::Overlap const& overlap : row) {
            visit({first, overlap.community, overlap.shared});
        }
    });
}

Distributions Level::Count(Part part) const {
    cpm::Community_graph graph;
    Prepare_community_graph(data_->coms, graph);
    cpm::Community_distributions counted;
    Community_statistics(counted, graph, Engine_part(part), data_->base->graph->n_nodes);
    return {Public(counted.membership), Public(counted.size), Public(counted.overlap),
            Public(counted.degree)};
}

std::span<Node const> Level::Members() const {
    return data_->coms.nodes.Flat();
}

std::span<std::uint64_t const> Level::Offsets() const {
    return {data_->coms.nodes.Starts(), size() + 1};
}

} // namespace plexor
