// SPDX-License-Identifier: MIT
// What a run of the plain model is given: the command line and the link file.
#ifndef PLEXOR_PLAIN_INPUT_H
#define PLEXOR_PLAIN_INPUT_H

#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cpm::model {

/// What a command line asks for. A value is there when its switch is.
struct Job {
    std::optional<std::string> input, output;
    std::optional<double> lower, upper; // these weights themselves are outside
    std::optional<double> intensity, limit;
    std::optional<unsigned> digits, k;
    bool directed = false, help = false;
    std::string errors; // empty: accepted

    std::string directory; // where the results go
    std::string header;    // the lines that open every result file, after "# The ..."

    bool Weighted() const { return lower || upper || intensity; }
};

/// The names of a link's ends -> its weight, 0 when links have none.
using Links = std::map<std::pair<std::string, std::string>, double>;

/// Sums repeated links, drops self-links and weights outside the thresholds. Throws
/// std::logic_error at a line that is none.
Links Read_links(std::istream& lines, Job const& job);

/// Examines the command line, the program's name first, and reads the link file. Throws
/// std::logic_error when the run ends here; what is to be printed before goes to `out`.
Job Process_input(std::vector<std::string> const& args, std::string const& banner, Links& links,
                  std::ostream& out);

} // namespace cpm::model

#endif
