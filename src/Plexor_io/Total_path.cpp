// SPDX-License-Identifier: MIT
#include "Plexor_io/Total_path.h"

#include "Plexor_io/Dir_error.h"
#include "support/Errors.h"

#include <array>
#include <cerrno>
#include <unistd.h>

namespace cpm {

std::vector<std::string> Get_path_list(std::string const& path) {
    std::vector<std::string> components;
    std::size_t begin = 0;
    std::size_t slash = 0;
    while ((slash = path.find('/', begin)) != std::string::npos) {
        components.push_back(path.substr(begin, slash - begin));
        begin = slash + 1;
    }
    if (begin < path.size()) {
        components.push_back(path.substr(begin));
    }
    return components;
}

std::string Get_total_path(std::string const& path) {
    std::vector<std::string> total;
    if (!path.empty() && path.front() != '/') {
        std::array<char, 10000> working_dir{};
        if (::getcwd(working_dir.data(), working_dir.size()) == nullptr) {
            std::string const reason = Dir_error(errno);
            throw Xerror_msg("ERROR: Get_total_path() called on " + path + " and\n" + reason);
        }
        total = Get_path_list(working_dir.data());
    }
    std::vector<std::string> const components = Get_path_list(path);
    for (std::size_t i = 0; i < components.size(); ++i) {
        std::string const& component = components[i];
        // Deliberate: after the last "/" even ".." is taken as it stands.
        bool const ended_by_slash = i + 1 < components.size() || path.back() == '/';
        if (ended_by_slash && component == ".." && !total.empty()) {
            total.pop_back();
        } else if (!(ended_by_slash && component == ".")) {
            total.push_back(component);
        }
    }
    std::string result;
    for (std::string const& component : total) {
        result += component + "/";
    }
    if (result.size() > 1) {
        result.pop_back();
    }
    return result;
}

} // namespace cpm
