// SPDX-License-Identifier: MIT
// The link file reader: one pass over the file, names interned as they come, links put into the
// order of their names at the end.
#ifndef PLEXOR_READ_LINKS_H
#define PLEXOR_READ_LINKS_H

#include "graph/Types.h"

#include <string>

namespace cpm {

/// The weights that a link may have: strictly inside the bounds that are set.
struct Weight_interval {
    bool lower_set = false;
    double lower = 0;
    bool upper_set = false;
    double upper = 0;
};

/// True when the weight lies strictly inside the interval.
bool Link_in_interval(double weight, Weight_interval const& interval);

/// `text` without the given characters at either end. A text of nothing else (an empty one, too)
/// has no first character to keep and ends in the standard library's std::out_of_range.
std::string trim(std::string const& text, std::string const& characters);

/// Reads the links of the file, weights where wanted, and leaves them as they stand there: neither
/// sorted nor merged. Throws as those below do.
void Read_links_as_given(std::string const& file, Link_map& links, bool weighted);

/// Reads the names of two nodes from each line; what follows them is ignored, and links have no
/// weights. Lines that begin with "#" and lines of one character are skipped, self-links dropped, a
/// link read twice is one link.
/// Throws Xep_file_not_found, Xep_read_file, Xep_wrong_line (a single name) or, at a blank line,
/// the error of trim().
void Read_unw_links(std::string const& file, Link_map& links);

/// Reads two names and a weight from each line. Lines whose weight lies outside the interval are
/// dropped one by one; the weights of the others add up when they name the same source and target.
/// Throws as Read_unw_links() does; a weight that is no number makes a wrong line.
void Read_weighted_links(std::string const& file, Link_map& links, Weight_interval const& interval);

} // namespace cpm

#endif
