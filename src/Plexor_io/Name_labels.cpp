// SPDX-License-Identifier: MIT
#include "Plexor_io/Name_labels.h"

namespace cpm {

Name_labels::Name_labels(Names_map const& names) : names_(names) {
    labels_.Reserve(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::string_view const name = names.Spaced(i);
        Label label{};
        if (name.size() <= label.bytes.size()) {
            std::ranges::copy(name, label.bytes.begin());
            label.size = static_cast<unsigned char>(name.size());
        } else {
            label.size = too_long;
        }
        labels_.push_back(label);
    }
}

} // namespace cpm
