// SPDX-License-Identifier: MIT
#include "Plexor_io/Level_log.h"

namespace cpm {

void Level_log::K_clique_search_began(std::uint32_t k, double intensity) {
    Add(Report::search_began, k, 0, intensity);
}

void Level_log::K_clique_search_at(std::uint32_t to_do, std::uint32_t total) {
    Add(Report::search_at, to_do, total, 0);
}

void Level_log::K_clique_search_done(std::uint32_t n_k_cliques) {
    Add(Report::search_done, n_k_cliques, 0, 0);
}

void Level_log::K_cliques_joining_began(std::uint32_t k, double intensity) {
    Add(Report::joining_began, k, 0, intensity);
}

void Level_log::K_cliques_joining_at(std::uint32_t to_do, std::uint32_t total) {
    Add(Report::joining_at, to_do, total, 0);
}

void Level_log::Add(Report report, std::uint32_t number, std::uint32_t total, double intensity) {
    stop_->Tick();
    console_.Flush();
    std::size_t const text_before = text_.View().size();
    if (!entries_.empty()) {
        Entry& last = entries_.back();
        bool const is_place = report == Report::search_at || report == Report::joining_at;
        if (is_place && last.report == report && last.total == total &&
            last.text_before == text_before && last.number - last.repeats == number) {
            ++last.repeats;
            return;
        }
    }
    entries_.push_back({text_before, intensity, number, total, 1, report});
}

void Level_log::Tell(Progress& progress, cpm::Console& console) {
    console_.Flush();
    std::string_view const text = text_.View();
    std::size_t told = 0;
    for (Entry const& entry : entries_) {
        console.Put(text.substr(told, entry.text_before - told));
        told = entry.text_before;
        Tell(entry, progress);
    }
    console.Put(text.substr(told));
    console.Flush();
}

void Level_log::Tell(Entry const& entry, Progress& progress) {
    switch (entry.report) {
    case Report::search_began:
        progress.K_clique_search_began(entry.number, entry.intensity);
        break;
    case Report::search_at:
        for (std::uint32_t i = 0; i < entry.repeats; ++i) {
            progress.K_clique_search_at(entry.number - i, entry.total);
        }
        break;
    case Report::search_done:
        progress.K_clique_search_done(entry.number);
        break;
    case Report::joining_began:
        progress.K_cliques_joining_began(entry.number, entry.intensity);
        break;
    case Report::joining_at:
        for (std::uint32_t i = 0; i < entry.repeats; ++i) {
            progress.K_cliques_joining_at(entry.number - i, entry.total);
        }
        break;
    }
}

} // namespace cpm
