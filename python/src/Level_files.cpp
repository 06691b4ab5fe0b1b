// SPDX-License-Identifier: MIT
#include "Level_files.h"

#include "Engine_values.h"
#include "Plexor_io/Console.h"
#include "Plexor_io/Find_coms.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Result_place.h"

#include <utility>

namespace plexor_access {

namespace {

cpm::Set_list Listed(std::span<Number const> members, std::span<Integer const> offsets) {
    cpm::Set_list lists;
    for (std::size_t i = 0; i + 1 < offsets.size(); ++i) {
        lists.Add(members.subspan(static_cast<std::size_t>(offsets[i]),
                                  static_cast<std::size_t>(offsets[i + 1] - offsets[i])));
    }
    return lists;
}

cpm::Found_cliques Found_in(Level_source_view const& source) {
    cpm::Found_cliques found;
    found.cliques = Listed(source.cliques, source.clique_offsets);
    found.n_exact = source.n_exact;
    found.nested = source.nested;
    if (!source.before_merge_offsets.empty()) {
        found.before_merge = Listed(source.before_merge, source.before_merge_offsets);
    }
    return found;
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

// Nobody reads what is printed.
struct Level_files::Data {
    Data(Level_source_view const& source, std::string const& directory)
        : labels(Names_of(source)),
          place(directory), files{place, source.com_flag, source.header, console} {
        settings.intensity = source.intensity.has_value();
        settings.intensity_threshold = source.intensity.value_or(0);
        cpm::Index_links links;
        for (std::size_t i = 0; i < source.first.size(); ++i) {
            links.pairs.push_back({source.first[i], source.second[i]});
        }
        links.weights.Append(source.weight);
        auto const n_nodes = static_cast<cpm::Node>(source.name_offsets.size() - 1);
        finder.emplace(cpm::Coms_input{Found_in(source), std::move(links), labels, n_nodes,
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

} // namespace plexor_access
