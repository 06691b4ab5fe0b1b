// SPDX-License-Identifier: MIT
#include "Plexor_io/Result_place.h"

#include "Plexor_io/Direktoriz.h"
#include "Plexor_io/My_int2string.h"

namespace cpm {

std::string Prepare_k_dir(std::string const& dir, std::uint32_t k) {
    std::string k_dir = dir + "/k=" + int2string(k);
    Dir_prepare(k_dir, "keep");
    return k_dir;
}

std::string Word_before(std::string const& word, char separator) {
    return word.empty() ? word : word + separator;
}

} // namespace cpm
