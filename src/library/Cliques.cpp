// SPDX-License-Identifier: MIT
#include <plexor/Cliques.h>

#include "Clique_find/Appr_core_cliques.h"
#include "Clique_find/Search_driver.h"
#include "library/Library_data.h"
#include "library/Public_errors.h"
#include "library/Told.h"
#include "parallel/Parallel_finder.h"
#include "parallel/Thread_count.h"

#include <plexor/Error.h>

#include <utility>

namespace plexor {

namespace {

void Search(cpm::Found_cliques& found, detail::Graph_data const& graph,
            Search_options const& options) {
    detail::Told_progress progress(options.progress);
    detail::Told_clock clock(options.clock);
    cpm::Graph const searched(graph.links, graph.directed);
    cpm::Find_cliques(found, searched, options.time_limit, clock,
                      cpm::Thread_count(options.threads), progress);
}

} // namespace

Cliques Find_cliques(Graph const& graph, Search_options const& options) {
    if (options.time_limit && !(*options.time_limit > 0)) {
        throw Error(Error::Kind::bad_argument, "a time limit must be above 0");
    }
    auto data = std::make_shared<detail::Clique_data>();
    data->graph = graph.Data();
    detail::Rethrow_as_public([&] { Search(data->found, *data->graph, options); });
    data->largest = cpm::Max_clique_size_in_cl_vec(data->found.cliques);
    return Cliques(std::move(data));
}

bool For_each_clique(Graph const& graph, std::function<bool(Nodes)> const& visit,
                     Search_options const& options) {
    if (options.time_limit) {
        throw Error(Error::Kind::bad_argument, "a time limit needs the whole list of cliques");
    }
    return detail::Rethrow_as_public([&] {
        detail::Told_progress progress(options.progress);
        cpm::Graph const searched(graph.Data()->links, graph.Directed());
        auto const finder =
            cpm::Make_finder(searched, cpm::Thread_count(options.threads), progress);
        return cpm::Visit_cliques(searched, *finder, progress, visit);
    });
}

Cliques::Cliques(std::shared_ptr<detail::Clique_data const> data) : data_(std::move(data)) {}

std::size_t Cliques::size() const {
    return data_->found.cliques.size();
}

Nodes Cliques::operator[](std::size_t number) const {
    return data_->found.cliques[number];
}

std::size_t Cliques::Number_of_exact() const {
    return data_->found.n_exact;
}

std::uint32_t Cliques::Largest() const {
    return data_->largest;
}

std::span<Node const> Cliques::Members() const {
    return data_->found.cliques.Flat();
}

std::span<std::uint64_t const> Cliques::Offsets() const {
    return {data_->found.cliques.Starts(), size() + 1};
}

} // namespace plexor
