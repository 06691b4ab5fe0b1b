// SPDX-License-Identifier: MIT
#include "Run.h"

#include "Engine_values.h"
#include "Plexor_io/Console.h"
#include "Plexor_io/Console_progress.h"
#include "Plexor_io/Find_coms.h"
#include "Plexor_io/Out_dir.h"
#include "Plexor_io/Read_links.h"
#include "Plexor_io/Run.h"
#include "Plexor_io/Text_sink.h"

#include <exception>
#include <utility>

namespace plexor_access {

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

} // namespace plexor_access
