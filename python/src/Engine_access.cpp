// SPDX-License-Identifier: MIT
#include "Engine_access.h"

#include "Clique_find/Appr_core_cliques.h"
#include "Coms_funcs/Community_graph.h"
#include "Coms_funcs/Intensity_coms.h"
#include "Coms_funcs/K_cliques.h"
#include "Coms_funcs/Pair_table.h"
#include "Coms_funcs/Percolation.h"
#include "Coms_funcs/Stale_overlaps.h"
#include "Find_cliques.h"
#include "Link_order.h"
#include "Plexor_io/Read_links.h"
#include "Vertex_maps.h"
#include "support/Errors.h"
#include "support/Version.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <mutex>
#include <unordered_map>

namespace plexor_access {

namespace {

// Nobody reads the reports of the searches here.
class Silence : public cpm::Console {
public:
    Silence() : Console(-1) {}
};

double Thread_seconds() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The engine's nodes begin at 1, and its offsets have no sign.
template <class List> Lists Shifted(List const& lists, Number by) {
    std::vector<Number> members(lists.Flat().begin(), lists.Flat().end());
    for (Number& member : members) {
        member -= by;
    }
    std::uint64_t const* const starts = lists.Starts();
    std::vector<Integer> offsets(starts, starts + lists.size() + 1);
    return {Array(std::move(members)), Array(std::move(offsets))};
}

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

// The links that the question leaves, sorted and merged.
void Select(cpm::Link_map& selected, Links_in const& links, Question const& question) {
    cpm::Weight_interval const interval{question.lower.has_value(), question.lower.value_or(0),
                                        question.upper.has_value(), question.upper.value_or(0)};
    bool const weighted = question.Weighted();
    selected.links.Reserve(links.source.size());
    for (std::size_t i = 0; i < links.source.size(); ++i) {
        if (links.source[i] == links.target[i] ||
            (weighted && !Link_in_interval(links.weight[i], interval))) {
            continue;
        }
        selected.links.push_back({links.source[i], links.target[i]});
        if (weighted) {
            selected.weights.push_back(links.weight[i]);
        }
    }
    Sort_and_merge(selected.links, selected.weights, static_cast<cpm::Node>(links.n_nodes));
}

[[noreturn]] void Throw(cpm::Xerror_msg const& error) {
    throw Engine_error(Engine_error::Kind::refused, error.what());
}

} // namespace

struct Search::Inside {
    Question question;
    std::mutex mutex; ///< the steps of a level leave their state here
    std::vector<Number> nodes; ///< node of the search -> node on the way in
    cpm::Link_map selected;    ///< by nodes on the way in
    cpm::Index_links links;
    cpm::Found_cliques found;
    Silence silence;
    cpm::Pair_table pairs;
    std::vector<bool> turned; ///< by number of pair: only the link from the larger node is there
    std::unique_ptr<cpm::Stale_overlaps> stale;
    std::unique_ptr<cpm::Percolation> percolation;
    // The last level.
    Number last_k = 0; ///< 0: none
    cpm::Communities coms;
    cpm::K_clique_list k_cliques;

    cpm::Node N_nodes() const { return static_cast<cpm::Node>(nodes.size()); }
    void Number_links(std::size_t n_nodes);
    void Find();
    void Prepare_levels();
    void Go_to(Number k);
};

// As the program does it when it converts links.
void Search::Inside::Number_links(std::size_t n_nodes) {
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

void Search::Inside::Find() {
    cpm::Graph graph;
    graph.directed = question.directed;
    if (question.directed) {
        Dir_vtx_map_from_link_map(graph.dir_vertices, links);
    } else if (question.time_limit) {
        Vtx_map_from_link_map(graph.vertices, links);
    } else {
        graph.links = &links;
    }
    Find_cliques(found, graph, question.time_limit, Thread_seconds, silence);
}

void Search::Inside::Prepare_levels() {
    if (pairs.Firsts_end() != 0) {
        return;
    }
    pairs = cpm::Pair_table(links, N_nodes(), found.cliques, found.n_exact);
    std::size_t number = 0;
    turned.assign(pairs.size(), false);
    for (cpm::Node first = 0; first < pairs.Firsts_end(); ++first) {
        for (cpm::Node const second : pairs.Seconds(first)) {
            turned[number++] = links.Find({first, second}) == links.size();
        }
    }
    if (question.intensity) {
        return;
    }
    if (found.before_merge) {
        stale = std::make_unique<cpm::Stale_overlaps>(*found.before_merge, found.cliques,
                                                      found.n_exact, N_nodes());
    }
    percolation = std::make_unique<cpm::Percolation>(found.cliques, found.n_exact, N_nodes(), pairs,
                                                     found.nested, stale.get());
}

void Search::Inside::Go_to(Number k) {
    if (last_k == k) {
        return;
    }
    last_k = 0;
    Prepare_levels();
    coms = cpm::Communities();
    if (question.intensity) {
        k_cliques = cpm::K_clique_list();
        Generate_k_cls_from_cls(found.cliques, links, k_cliques, k, *question.intensity, silence);
        Intensity_coms_from_k_cliques(k_cliques, coms, links, *question.intensity, silence);
    } else {
        percolation->Coms_from_appr_ovlp_matr(coms, k);
    }
    last_k = k;
}

Search::Search(Links_in const& links, Question const& question, Watcher& watcher)
    : inside_(std::make_unique<Inside>()) {
    inside_->question = question;
    watcher.Tick();
    try {
        Select(inside_->selected, links, question);
        inside_->Number_links(links.n_nodes);
        inside_->Find();
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    }
    watcher.Tick();
}

Search::~Search() = default;

Array<Number> Search::Nodes() const {
    return Array(inside_->nodes);
}

Links_out Search::Links() const {
    std::vector<Number> source;
    std::vector<Number> target;
    for (cpm::Node_pair const& link : inside_->selected.links) {
        source.push_back(link.first - 1);
        target.push_back(link.second - 1);
    }
    auto const& weights = inside_->selected.weights;
    return {Array(std::move(source)), Array(std::move(target)),
            Array(std::vector<double>(weights.begin(), weights.end()))};
}

Lists Search::Cliques() const {
    return Shifted(inside_->found.cliques, 1);
}

std::size_t Search::N_exact_cliques() const {
    return inside_->found.n_exact;
}

Number Search::Largest() const {
    return Max_clique_size_in_cl_vec(inside_->found.cliques);
}

Level Search::At(Number k, Watcher& watcher) {
    std::lock_guard const lock(inside_->mutex);
    watcher.Tick();
    try {
        inside_->Go_to(k);
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    }
    watcher.Tick();
    Level level;
    level.nodes = Shifted(inside_->coms.nodes, 1);
    level.n_exact = inside_->coms.n_exact;
    if (inside_->question.intensity) {
        level.k_cliques = From_k_cliques(inside_->k_cliques);
    } else {
        level.cliques = Shifted(inside_->coms.cliques, 0);
    }
    return level;
}

Level_links Search::Links_at(Number k, Watcher& watcher) {
    std::lock_guard const lock(inside_->mutex);
    watcher.Tick();
    try {
        inside_->Go_to(k);
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    }
    cpm::Pair_table const& pairs = inside_->pairs;
    std::vector<Number> firsts;
    firsts.reserve(pairs.size());
    for (cpm::Node first = 0; first < pairs.Firsts_end(); ++first) {
        firsts.resize(firsts.size() + pairs.Seconds(first).size(), first);
    }
    std::vector<Number> source;
    std::vector<Number> target;
    std::vector<Integer> offsets{0};
    auto const put = [&](Number number) {
        Number first = firsts[number];
        Number second = pairs.Second(number);
        if (inside_->turned[number]) {
            std::swap(first, second);
        }
        source.push_back(first - 1);
        target.push_back(second - 1);
    };
    cpm::Take_links const take{
        .numbers = [&](std::span<Number const> numbers) { std::ranges::for_each(numbers, put); },
        .all_pairs =
            [&](cpm::Node_set nodes) {
                std::vector<Number> row;
                for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
                    row.clear();
                    pairs.Append_numbers(nodes[i], nodes.subspan(i + 1), row);
                    std::ranges::for_each(row, put);
                }
            }};
    for (std::size_t i = 0; i < inside_->coms.size(); ++i) {
        inside_->coms.links(i, take);
        offsets.push_back(static_cast<Integer>(source.size()));
    }
    watcher.Tick();
    return {Array(std::move(source)), Array(std::move(target)), Array(std::move(offsets))};
}

namespace {

cpm::Communities With_nodes(Lists const& nodes, std::size_t n_exact) {
    cpm::Communities coms;
    coms.n_exact = static_cast<std::uint32_t>(n_exact);
    for (std::size_t i = 0; i + 1 < nodes.offsets.size; ++i) {
        for (Integer at = nodes.offsets.data[i]; at < nodes.offsets.data[i + 1]; ++at) {
            coms.nodes.Append(nodes.members.data[at] + 1);
        }
        coms.nodes.Close_list();
    }
    return coms;
}

Counts From(cpm::Distribution const& distribution) {
    std::vector<Integer> values;
    std::vector<Integer> counts;
    for (cpm::Value_count const& entry : distribution) {
        values.push_back(entry.value);
        counts.push_back(static_cast<Integer>(entry.count));
    }
    return {Array(std::move(values)), Array(std::move(counts))};
}

cpm::Community_part From(Part part) {
    return part == Part::all     ? cpm::Community_part::all
           : part == Part::exact ? cpm::Community_part::exact
                                 : cpm::Community_part::approximated;
}

} // namespace

Overlaps Community_graph(Lists const& nodes, std::size_t n_exact, std::size_t /*n_nodes*/) {
    cpm::Communities const coms = With_nodes(nodes, n_exact);
    cpm::Community_graph graph;
    Prepare_community_graph(coms, graph);
    std::vector<Integer> a;
    std::vector<Integer> b;
    std::vector<Integer> shared;
    graph.Walk([&](std::uint32_t community, std::span<cpm::Overlap const> row) {
        for (cpm::Overlap const& overlap : row) {
            a.push_back(community);
            b.push_back(overlap.community);
            shared.push_back(overlap.shared);
        }
    });
    return {Array(std::move(a)), Array(std::move(b)), Array(std::move(shared))};
}

Distributions Count(Lists const& nodes, std::size_t n_exact, std::size_t n_nodes, Part part) {
    cpm::Communities const coms = With_nodes(nodes, n_exact);
    cpm::Community_graph graph;
    Prepare_community_graph(coms, graph);
    cpm::Community_distributions distributions;
    Community_statistics(distributions, graph, From(part), static_cast<cpm::Node>(n_nodes));
    return {From(distributions.membership), From(distributions.size), From(distributions.overlap),
            From(distributions.degree)};
}

std::vector<Integer> Links_outside_triangles(std::span<Number const> source,
                                             std::span<Number const> target, std::size_t n_nodes) {
    // The neighbours of each node, ascending, flat.
    std::vector<std::uint64_t> starts(n_nodes + 1, 0);
    for (std::size_t i = 0; i < source.size(); ++i) {
        ++starts[source[i]];
        ++starts[target[i]];
    }
    std::uint64_t end = 0;
    for (std::uint64_t& start : starts) {
        end += start;
        start = end;
    }
    std::vector<Number> neighbours(end);
    for (std::size_t i = 0; i < source.size(); ++i) {
        neighbours[--starts[source[i]]] = target[i];
        neighbours[--starts[target[i]]] = source[i];
    }
    auto const row = [&](Number node) {
        return std::span(neighbours).subspan(starts[node], starts[node + 1] - starts[node]);
    };
    for (Number node = 0; node < n_nodes; ++node) {
        std::ranges::sort(row(node));
    }
    std::vector<Integer> outside;
    for (std::size_t i = 0; i < source.size(); ++i) {
        // The shorter row is walked: in all this is less than the links times the square root of
        // their number.
        auto shorter = row(source[i]);
        auto longer = row(target[i]);
        if (longer.size() < shorter.size()) {
            std::swap(shorter, longer);
        }
        if (std::ranges::none_of(shorter, [&](Number node) {
                return std::ranges::binary_search(longer, node);
            })) {
            outside.push_back(static_cast<Integer>(i));
        }
    }
    return outside;
}

namespace {

// Gives numbers to nodes as they come; `find(node)` leads to the place where its number stands.
template <class Find>
Numbered Number_all(std::span<Integer const> source, std::span<Integer const> target, Find find) {
    std::vector<Integer> nodes;
    std::vector<Number> from(source.size());
    std::vector<Number> to(source.size());
    auto const number_of = [&](Integer node) {
        Number& number = find(node); // plus 1; 0: none yet
        if (number == 0) {
            if (nodes.size() >= std::numeric_limits<Number>::max() - 1) {
                throw Engine_error(Engine_error::Kind::refused,
                                   "the links have more nodes than can be numbered");
            }
            nodes.push_back(node);
            number = static_cast<Number>(nodes.size());
        }
        return number - 1;
    };
    for (std::size_t i = 0; i < source.size(); ++i) {
        from[i] = number_of(source[i]);
        to[i] = number_of(target[i]);
    }
    return {Array(std::move(nodes)), Array(std::move(from)), Array(std::move(to))};
}

} // namespace

Numbered Number_nodes(std::span<Integer const> source, std::span<Integer const> target) {
    if (source.empty()) {
        return {};
    }
    auto const [low_source, high_source] = std::ranges::minmax(source);
    auto const [low_target, high_target] = std::ranges::minmax(target);
    Integer const low = std::min(low_source, low_target);
    // Unsigned, as the difference of two signed numbers may have no sign bit to spare.
    auto const range = static_cast<std::uint64_t>(std::max(high_source, high_target)) -
                       static_cast<std::uint64_t>(low);
    constexpr std::uint64_t small = std::uint64_t{1} << 20;
    if (range < small + 8 * source.size()) {
        std::vector<Number> numbers(range + 1, 0);
        return Number_all(source, target, [&](Integer node) -> Number& {
            return numbers[static_cast<std::size_t>(node - low)];
        });
    }
    std::unordered_map<Integer, Number> numbers;
    return Number_all(source, target, [&](Integer node) -> Number& { return numbers[node]; });
}

File_links Read_links(std::string const& path, bool weighted) {
    using Kind = Engine_error::Kind;
    cpm::Link_map links;
    try {
        cpm::Read_links_as_given(path, links, weighted);
    } catch (cpm::Xep_file_not_found const& error) {
        throw Engine_error(Kind::file_not_found, error.what());
    } catch (cpm::Xep_wrong_line const& error) {
        throw Engine_error(Kind::wrong_line, error.what());
    } catch (cpm::Xep_read_file const& error) {
        throw Engine_error(Kind::unreadable_file, error.what());
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    } catch (std::out_of_range const&) {
        // The program ends with the standard library's own words here, which help nobody.
        throw Engine_error(Kind::wrong_line, "ERROR: Wrong line found in '" + path +
                                                 "' :\nan empty line, or one of blanks only");
    }
    File_links read;
    for (std::size_t i = 0; i < links.names.size(); ++i) {
        read.names.emplace_back(links.names[i]);
    }
    std::vector<Number> source;
    std::vector<Number> target;
    for (cpm::Node_pair const& link : links.links) {
        source.push_back(link.first);
        target.push_back(link.second);
    }
    read.source = Array(std::move(source));
    read.target = Array(std::move(target));
    read.weight = Array(std::vector<double>(links.weights.begin(), links.weights.end()));
    return read;
}

std::string_view Version() {
    return cpm::version;
}

} // namespace plexor_access
