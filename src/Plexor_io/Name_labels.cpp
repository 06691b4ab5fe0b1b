// SPDX-License-Identifier: MIT
#include "Plexor_io/Name_labels.h"

#include <algorithm>
#include <cstring>

namespace cpm {

Name_labels::Name_labels(Names_map names) {
    labels_.Reserve(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::string_view const name = names.Spaced(i);
        Label label{};
        if (name.size() <= label.bytes.size()) {
            std::ranges::copy(name, label.bytes.begin());
            label.size = static_cast<unsigned char>(name.size());
        } else {
            std::size_t const number = long_names_.size();
            std::memcpy(label.bytes.data(), &number, sizeof number);
            label.size = too_long;
            long_names_.Add(names[i]);
        }
        labels_.push_back(label);
    }
}

std::string_view Name_labels::Long_name(Label const& label) const {
    std::size_t number = 0;
    std::memcpy(&number, label.bytes.data(), sizeof number);
    return long_names_.Spaced(number);
}

} // namespace cpm
