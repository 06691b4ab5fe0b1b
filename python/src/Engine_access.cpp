// SPDX-License-Identifier: MIT
#include "Engine_access.h"

#include "Clique_find/Appr_core_cliques.h"
#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Community_graph.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Intensity_coms.h"
#include "Coms_funcs/K_cliques.h"
#include "Coms_funcs/Percolation.h"
#include "Plexor_io/Console.h"
#include "Plexor_io/Console_progress.h"
#include "Plexor_io/Find_coms.h"
#include "Plexor_io/Link_file_errors.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Out_dir.h"
#include "Plexor_io/Read_links.h"
#include "Plexor_io/Result_place.h"
#include "Plexor_io/Run.h"
#include "Plexor_io/Text_sink.h"
#include "graph/Link_order.h"
#include "parallel/Level_pipeline.h"
#include "parallel/Parallel_finder.h"
#include "parallel/Thread_count.h"
#include "support/Errors.h"
#include "support/Progress.h"
#include "support/Version.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <unordered_map>

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

struct Search_data {
    Question question;
    std::vector<Number> nodes; ///< node of the search -> node on the way in
    cpm::Link_map selected;    ///< by nodes of the search
    cpm::Index_links links;
    cpm::Found_cliques found;

    // Made with the first level, under the mutex; what a level changes is used under it only.
    std::mutex mutex;
    cpm::Edge_numbering edges;
    std::vector<Number> smaller_ends; ///< by number of edge
    std::vector<bool> reversed;       ///< likewise: only the link from the larger node is there
    std::shared_ptr<cpm::Ranked_cliques const> ranked; ///< none with an intensity
    std::unique_ptr<cpm::Percolation> percolation;     ///< likewise; made with the first level
    bool ready = false;

    cpm::Node N_nodes() const { return static_cast<cpm::Node>(nodes.size()); }
    void Number_links(std::size_t n_nodes);
    void Find(unsigned n_threads, Watcher& watcher);
    void Prepare_levels();
    void Number_edges();
};

struct Level_data {
    std::shared_ptr<Search_data const> search; ///< what links are made of refers to it
    Lists nodes;
    Lists cliques;
    Lists k_cliques;
    std::size_t n_exact = 0;
    std::shared_ptr<cpm::Community_links const> links;

    cpm::Communities Communities() const;
};

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

Lists const& Level::Nodes() const {
    return data_->nodes;
}

Lists const& Level::Cliques() const {
    return data_->cliques;
}

Lists const& Level::K_cliques() const {
    return data_->k_cliques;
}

std::size_t Level::N_exact() const {
    return data_->n_exact;
}

namespace {

// Lists the links that it is handed.
class Link_lister : public cpm::Link_visitor {
public:
    explicit Link_lister(Search_data const& search) : search_(search) {}

    void Numbers(std::span<cpm::Link_number const> numbers) override {
        for (cpm::Link_number const number : numbers) {
            Number const first = search_.smaller_ends[number] - 1;
            Number const second = search_.edges.Larger_end(number) - 1;
            bool const reversed = search_.reversed[number];
            source.push_back(reversed ? second : first);
            target.push_back(reversed ? first : second);
        }
    }
    void All_pairs(cpm::Node_set nodes) override {
        for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
            row_.clear();
            search_.edges.Append_numbers(nodes[i], nodes.subspan(i + 1), row_);
            Numbers(row_);
        }
    }

    std::vector<Number> source;
    std::vector<Number> target;

private:
    Search_data const& search_;
    std::vector<cpm::Link_number> row_;
};

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

// The engine's own form of the level, for as long as something is made of it.
cpm::Communities Level_data::Communities() const {
    cpm::Communities coms;
    coms.n_exact = static_cast<std::uint32_t>(n_exact);
    coms.links = links;
    for (std::size_t i = 0; i + 1 < nodes.offsets.size; ++i) {
        for (Integer at = nodes.offsets.data[i]; at < nodes.offsets.data[i + 1]; ++at) {
            coms.nodes.Append(nodes.members.data[at] + 1);
        }
        coms.nodes.Close_list();
    }
    return coms;
}

Level_links Level::Links(Watcher& watcher) const {
    cpm::Communities const coms = data_->Communities();
    Link_lister lister(*data_->search);
    std::vector<Integer> offsets{0};
    for (std::size_t i = 0; i < coms.size(); ++i) {
        watcher.Tick();
        coms.Visit_links(i, lister);
        offsets.push_back(static_cast<Integer>(lister.source.size()));
    }
    return {Array(std::move(lister.source)), Array(std::move(lister.target)),
            Array(std::move(offsets))};
}

Overlaps Level::Graph(Watcher& watcher) const {
    cpm::Communities const coms = data_->Communities();
    cpm::Community_graph graph;
    Prepare_community_graph(coms, graph);
    std::vector<Integer> a;
    std::vector<Integer> b;
    std::vector<Integer> shared;
    graph.Walk([&](std::uint32_t community, std::span<cpm::Overlap const> row) {
        watcher.Tick();
        for (cpm::Overlap const& overlap : row) {
            a.push_back(community);
            b.push_back(overlap.community);
            shared.push_back(overlap.shared);
        }
    });
    return {Array(std::move(a)), Array(std::move(b)), Array(std::move(shared))};
}

Distributions Level::Count(Part part) const {
    cpm::Communities const coms = data_->Communities();
    cpm::Community_graph graph;
    Prepare_community_graph(coms, graph);
    cpm::Community_distributions distributions;
    Community_statistics(distributions, graph, From(part), data_->search->N_nodes());
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
        if (std::ranges::none_of(
                shorter, [&](Number node) { return std::ranges::binary_search(longer, node); })) {
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

namespace {

// Prints what the program prints, and tells the watcher. What the watcher throws is kept: to the
// run it is a cancellation.
class Told_and_printed : public cpm::Console_progress {
public:
    Told_and_printed(cpm::Console& console, Watcher& watcher, bool one_level)
        : Console_progress(console), watcher_(watcher), one_level_(one_level) {}

    void Tick() override {
        Console_progress::Tick();
        Tell([&] { watcher_.Tick(); });
    }
    void Node_started(std::uint32_t to_do, std::uint32_t total) override {
        Console_progress::Node_started(to_do, total);
        Tell([&] { watcher_.Searching(to_do, total); });
    }
    void Level_began(std::uint32_t k, std::uint32_t largest) override {
        Console_progress::Level_began(k, largest);
        Tell_level(k);
    }
    void K_clique_search_began(std::uint32_t k, double intensity) override {
        Console_progress::K_clique_search_began(k, intensity);
        Tell_level(k);
    }
    void K_clique_search_at(std::uint32_t to_do, std::uint32_t total) override {
        Console_progress::K_clique_search_at(to_do, total);
        Tell([&] { watcher_.Tick(); });
    }
    void K_cliques_joining_at(std::uint32_t to_do, std::uint32_t total) override {
        Console_progress::K_cliques_joining_at(to_do, total);
        Tell([&] { watcher_.Tick(); });
    }
    void Rethrow() const {
        if (thrown_) {
            std::rethrow_exception(thrown_);
        }
    }

private:
    template <class Call> void Tell(Call const& call) {
        try {
            call();
        } catch (...) {
            thrown_ = std::current_exception();
            throw cpm::Cancelled();
        }
    }

    // Levels go from the largest k down to 3, or there is one only.
    void Tell_level(std::uint32_t k) {
        if (!first_k_) {
            first_k_ = k;
        }
        std::uint64_t const total = one_level_ ? 1 : *first_k_ - 2;
        Tell([&] { watcher_.Level(*first_k_ - k, total); });
    }

    Watcher& watcher_;
    bool one_level_;
    std::optional<std::uint32_t> first_k_;
    std::exception_ptr thrown_;
};

cpm::Link_source Links_of(Named_links const& given, Question const& question) {
    return [&given, &question](bool, cpm::Link_map& links) {
        for (std::string const& name : given.names) {
            links.names.Add(name);
        }
        Select(links, given.links, question);
    };
}

cpm::Run_settings Settings_of(Run_request const& request) {
    cpm::Run_settings settings;
    Question const& question = request.question;
    settings.directed = question.directed;
    settings.intensity = question.intensity.has_value();
    settings.intensity_threshold = question.intensity.value_or(0);
    settings.time_limit_set = question.time_limit.has_value();
    settings.time_limit = question.time_limit.value_or(0);
    settings.k_given = request.k.has_value();
    settings.k = request.k.value_or(0);
    settings.n_threads = request.n_threads;
    return settings;
}

} // namespace

namespace {

Run_report Run_with(Run_request const& request, std::optional<Named_links> const& links,
                    Watcher& watcher, cpm::Community_stage const& communities) {
    Question const& question = request.question;
    cpm::Run_settings const settings = Settings_of(request);
    cpm::Input_request input;
    input.input_file = request.input;
    input.weights = {question.lower.has_value(), question.lower.value_or(0),
                     question.upper.has_value(), question.upper.value_or(0)};
    input.digits = request.digits;
    input.out_dir = request.output;
    cpm::Console console(request.log);
    Told_and_printed progress(console, watcher, settings.k_given);
    cpm::Run_outcome outcome =
        cpm::Run(settings, input, links ? Links_of(*links, question) : Links_of_file(input),
                 progress, console, communities);
    console.Flush();
    progress.Rethrow();
    using Kind = cpm::Run_outcome::Kind;
    if (outcome.kind == Kind::out_of_memory) {
        throw std::bad_alloc();
    }
    if (outcome.kind != Kind::completed) {
        throw Engine_error(Engine_error::Kind::refused, outcome.text);
    }
    return {Output_dir_name(input.input_file, input.weights, input.digits, input.out_dir, settings),
            std::move(outcome.not_written)};
}

// Copies what the levels are made from.
void Keep(cpm::Coms_input const& input, cpm::Run_files const& files, Level_source& source) {
    std::vector<Number> first;
    std::vector<Number> second;
    for (cpm::Node_pair const& link : input.links.pairs) {
        first.push_back(link.first);
        second.push_back(link.second);
    }
    source.first = Array(std::move(first));
    source.second = Array(std::move(second));
    auto const& weights = input.links.weights;
    source.weight = Array(std::vector<double>(weights.begin(), weights.end()));
    cpm::Text names;
    std::vector<Integer> name_offsets{0};
    for (cpm::Node node = 1; node <= input.n_nodes; ++node) {
        input.labels.Put(node, names);
        name_offsets.push_back(static_cast<Integer>(names.View().size()));
    }
    source.names = Array(std::vector<std::uint8_t>(names.View().begin(), names.View().end()));
    source.name_offsets = Array(std::move(name_offsets));
    source.cliques = Shifted(input.found.cliques, 0);
    if (input.found.before_merge) {
        source.before_merge = Shifted(*input.found.before_merge, 0);
    }
    source.n_exact = input.found.n_exact;
    source.nested = input.found.nested;
    source.largest = input.largest_clique;
    source.com_flag = files.com_flag;
    source.header = files.alap_szoveg;
}

cpm::Set_list Listed(std::span<Number const> members, std::span<Integer const> offsets) {
    cpm::Set_list lists;
    for (std::size_t i = 0; i + 1 < offsets.size(); ++i) {
        lists.Add(members.subspan(static_cast<std::size_t>(offsets[i]),
                                  static_cast<std::size_t>(offsets[i + 1] - offsets[i])));
    }
    return lists;
}

cpm::Names_map Names_of(Level_source_view const& source) {
    cpm::Names_map names;
    names.Add(""); // index 0 is no node
    for (std::size_t i = 0; i + 1 < source.name_offsets.size(); ++i) {
        std::string name;
        for (Integer at = source.name_offsets[i]; at + 1 < source.name_offsets[i + 1]; ++at) {
            name.push_back(static_cast<char>(source.names[static_cast<std::size_t>(at)]));
        }
        names.Add(name);
    }
    return names;
}

} // namespace

Run_report Run(Run_request const& request, std::optional<Named_links> const& links,
               Watcher& watcher) {
    return Run_with(request, links, watcher, cpm::Find_communities);
}

Run_report Run_to_cliques(Run_request const& request, std::optional<Named_links> const& links,
                          Watcher& watcher, Level_source& source) {
    return Run_with(request, links, watcher,
                    [&source](cpm::Coms_input input, cpm::Run_files& files, cpm::Progress&) {
                        Keep(input, files, source);
                    });
}

// Nobody reads what is printed.
struct Level_files::Data {
    Data(Level_source_view const& source, std::string const& directory)
        : labels(Names_of(source)),
          place(directory), files{place, source.com_flag, source.header, console} {
        cpm::Found_cliques found;
        found.cliques = Listed(source.cliques, source.clique_offsets);
        found.n_exact = source.n_exact;
        found.nested = source.nested;
        if (!source.before_merge_offsets.empty()) {
            found.before_merge = Listed(source.before_merge, source.before_merge_offsets);
        }
        settings.intensity = source.intensity.has_value();
        settings.intensity_threshold = source.intensity.value_or(0);
        cpm::Index_links links;
        for (std::size_t i = 0; i < source.first.size(); ++i) {
            links.pairs.push_back({source.first[i], source.second[i]});
        }
        links.weights.Append(source.weight);
        auto const n_nodes = static_cast<cpm::Node>(source.name_offsets.size() - 1);
        finder.emplace(cpm::Coms_input{std::move(found), std::move(links), labels, n_nodes,
                                       source.largest, settings},
                       files, progress);
    }

    cpm::Name_labels labels;
    cpm::Run_settings settings;
    cpm::Console console{-1};
    cpm::Result_place place;
    cpm::Run_files files;
    // The progress of the level under way.
    struct Handed_on : public cpm::Progress {
        Watcher* to = nullptr;
        void Tick() override { to->Tick(); }
    } progress;
    std::optional<cpm::Coms_finder> finder;
};

Level_files::Level_files(Level_source_view const& source, std::string const& directory) {
    try {
        data_ = std::make_unique<Data>(source, directory);
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    }
}

Level_files::~Level_files() = default;

std::vector<std::string> Level_files::Write(Number k, Watcher& watcher) {
    data_->progress.to = &watcher;
    data_->files.not_written.clear();
    try {
        data_->finder->Find_coms(k);
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    }
    return data_->files.not_written;
}

std::string_view Version() {
    return cpm::version;
}

} // namespace plexor_access
