// SPDX-License-Identifier: MIT
#include "Engine_values.h"

#include "Plexor_io/Read_links.h"
#include "graph/Link_order.h"
#include "support/Version.h"

namespace plexor_access {

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

void Throw(cpm::Xerror_msg const& error) {
    throw Engine_error(Engine_error::Kind::refused, error.what());
}

std::string_view Version() {
    return cpm::version;
}

} // namespace plexor_access
