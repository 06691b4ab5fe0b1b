// SPDX-License-Identifier: MIT
#include "Search.h"

#include "Clique_find/Appr_core_cliques.h"
#include "Coms_funcs/Intensity_coms.h"
#include "Coms_funcs/K_cliques.h"
#include "Engine_values.h"
#include "Search_data.h"
#include "graph/Link_order.h"
#include "parallel/Level_pipeline.h"
#include "parallel/Parallel_finder.h"
#include "parallel/Thread_count.h"
#include "support/Progress.h"

#include <algorithm>
#include <utility>

namespace plexor_access {

namespace {

// Hands on what a search tells.
class Told : public cpm::Progress {
public:
    explicit Told(Watcher& watcher) : watcher_(watcher) {}

    void Tick() override { watcher_.Tick(); }
    void Node_started(std::uint32_t to_do, std::uint32_t total) override {
        watcher_.Searching(to_do, total);
    }
    void Node_overran(std::uint32_t, std::uint32_t, std::uint32_t) override { watcher_.Tick(); }
    void K_clique_search_at(std::uint32_t, std::uint32_t) override { watcher_.Tick(); }
    void K_cliques_joining_at(std::uint32_t, std::uint32_t) override { watcher_.Tick(); }

private:
    Watcher& watcher_;
};

} // namespace

// As the program does it when it converts links.
void Search_data::Number_links(std::size_t n_nodes) {
    cpm::Flat_array<cpm::Node> number(n_nodes, 0);
    auto const number_of = [&](Number node) {
        if (number[node] == 0) {
            nodes.push_back(node);
            number[node] = static_cast<cpm::Node>(nodes.size());
        }
        return number[node];
    };
    links.pairs.Reserve(selected.links.size());
    for (cpm::Node_pair const& link : selected.links) {
        cpm::Node first = number_of(link.first);
        cpm::Node second = number_of(link.second);
        if (!question.directed && second < first) {
            std::swap(first, second);
        }
        links.pairs.push_back({first, second});
    }
    links.weights = selected.weights;
    Sort_and_merge(links.pairs, links.weights, N_nodes() + 1);
    for (cpm::Node_pair& link : selected.links) {
        link = {number[link.first], number[link.second]};
    }
}

void Search_data::Find(unsigned n_threads, Watcher& watcher) {
    cpm::Graph const graph(links, question.directed);
    cpm::Thread_clock clock;
    Told progress(watcher);
    Find_cliques(found, graph, question.time_limit, clock, cpm::Thread_count(n_threads), progress);
}

void Search_data::Prepare_levels() {
    if (ready) {
        return;
    }
    edges = cpm::Edge_numbering(links, N_nodes(), found.cliques, found.n_exact);
    Number_edges();
    if (!question.intensity) {
        ranked = std::make_shared<cpm::Ranked_cliques>(found.cliques, N_nodes());
    }
    ready = true;
}

void Search_data::Number_edges() {
    // Both the edges and the links are ascending, so one look at each is enough.
    std::size_t next = 0;
    auto const is_link = [&](cpm::Node_pair pair) {
        while (next < links.size() && links.pairs[next] < pair) {
            ++next;
        }
        return next < links.size() && links.pairs[next] == pair;
    };
    smaller_ends.reserve(edges.size());
    reversed.reserve(edges.size());
    for (cpm::Node first = 0; first < edges.Smaller_ends_end(); ++first) {
        for (cpm::Node const second : edges.Larger_neighbours(first)) {
            smaller_ends.push_back(first);
            reversed.push_back(!is_link({first, second}));
        }
    }
}

Search::Search(Links_in const& links, Question const& question, unsigned n_threads,
               Watcher& watcher)
    : data_(std::make_shared<Search_data>()) {
    data_->question = question;
    watcher.Tick();
    try {
        Select(data_->selected, links, question);
        data_->Number_links(links.n_nodes);
        watcher.Tick();
        data_->Find(n_threads, watcher);
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    }
    watcher.Tick();
}

Array<Number> Search::Nodes() const {
    return Array(data_->nodes);
}

Links_out Search::Links() const {
    std::vector<Number> source;
    std::vector<Number> target;
    for (cpm::Node_pair const& link : data_->selected.links) {
        source.push_back(link.first - 1);
        target.push_back(link.second - 1);
    }
    auto const& weights = data_->selected.weights;
    return {Array(std::move(source)), Array(std::move(target)),
            Array(std::vector<double>(weights.begin(), weights.end()))};
}

Lists Search::Cliques() const {
    return Shifted(data_->found.cliques, 1);
}

std::size_t Search::N_exact_cliques() const {
    return data_->found.n_exact;
}

Number Search::Largest() const {
    return Max_clique_size_in_cl_vec(data_->found.cliques);
}

namespace {

Lists From_k_cliques(cpm::K_clique_list const& k_cliques) {
    std::vector<Number> members;
    std::vector<Integer> offsets{0};
    members.reserve(k_cliques.size() * k_cliques.K());
    offsets.reserve(k_cliques.size() + 1);
    for (std::size_t i = 0; i < k_cliques.size(); ++i) {
        for (cpm::Node const node : k_cliques[i]) {
            members.push_back(node - 1);
        }
        offsets.push_back(static_cast<Integer>(members.size()));
    }
    return {Array(std::move(members)), Array(std::move(offsets))};
}

void Fill(Level_data& level, cpm::Communities const& coms) {
    level.nodes = Shifted(coms.nodes, 1);
    level.cliques = Shifted(coms.cliques, 0);
    level.n_exact = coms.n_exact;
    level.links = coms.links;
}

void Find_by_intensity(Search_data const& search, Number k, Level_data& level,
                       cpm::Progress& progress) {
    double const intensity = *search.question.intensity;
    cpm::K_clique_list k_cliques;
    Generate_k_cls_from_cls(search.found.cliques, search.links, k_cliques, k, intensity, progress);
    level.k_cliques = From_k_cliques(k_cliques);
    cpm::Communities coms;
    Intensity_coms_from_k_cliques(std::move(k_cliques), coms, search.links, intensity, progress);
    Fill(level, coms);
}

} // namespace

Level Search::At(Number k, Watcher& watcher) const {
    std::lock_guard const lock(data_->mutex);
    watcher.Tick();
    auto level = std::make_shared<Level_data>();
    level->search = data_;
    try {
        data_->Prepare_levels();
        watcher.Tick();
        Told progress(watcher);
        if (data_->question.intensity) {
            Find_by_intensity(*data_, k, *level, progress);
        } else {
            if (!data_->percolation) {
                data_->percolation =
                    std::make_unique<cpm::Percolation>(data_->found, data_->ranked, data_->edges);
            }
            cpm::Communities coms;
            data_->percolation->Coms_from_appr_ovlp_matr(coms, k, &progress);
            Fill(*level, coms);
        }
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    }
    watcher.Tick();
    return Level(std::move(level));
}

struct Levels_ahead::Data : private cpm::Level_taker {
    Data(std::shared_ptr<Search_data const> of, std::vector<Number> wanted, unsigned n_threads)
        : search(std::move(of)), ks(std::move(wanted)), levels(ks.size()),
          pipeline(*this, {search->found, search->ranked.get(), search->edges}, ks, n_threads) {}

    void Make_by_intensity(std::size_t place, unsigned, cpm::Progress& progress) override {
        Begin(place);
        Find_by_intensity(*search, ks[place], *levels[place], progress);
    }
    void Take(cpm::Communities coms, std::size_t place, unsigned, cpm::Progress&) override {
        Begin(place);
        Fill(*levels[place], coms);
    }
    void Begin(std::size_t place) {
        levels[place] = std::make_shared<Level_data>();
        levels[place]->search = search;
    }

    std::shared_ptr<Search_data const> search;
    std::vector<Number> ks;
    std::vector<std::shared_ptr<Level_data>> levels; ///< by place
    std::size_t next = 0;
    cpm::Level_pipeline pipeline; ///< ended first
};

Levels_ahead::Levels_ahead(Search const& search, std::vector<Number> ks, unsigned n_threads,
                           Watcher& watcher) {
    std::lock_guard const lock(search.data_->mutex);
    watcher.Tick();
    try {
        search.data_->Prepare_levels();
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    }
    data_ = std::make_unique<Data>(search.data_, std::move(ks), cpm::Thread_count(n_threads));
}

Levels_ahead::~Levels_ahead() = default;

Level Levels_ahead::Next(Watcher& watcher) {
    Told progress(watcher);
    try {
        data_->pipeline.Next(progress);
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    }
    return Level(std::move(data_->levels[data_->next++]));
}

} // namespace plexor_access
