// SPDX-License-Identifier: MIT
// What is wrong with a run's files.
#ifndef PLEXOR_INVARIANTS_FINDINGS_H
#define PLEXOR_INVARIANTS_FINDINGS_H

#include <map>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace cpm::invariants {

class Findings {
public:
    /// What is added from now on stands after these words; a damaged file breaks many rules, and a
    /// few findings for each of these are enough.
    void Set_place(std::string place) { place_ = std::move(place); }

    template <class... Parts> void Add(Parts const&... parts) {
        ++count_;
        if (++of_place_[place_] <= most_of_a_place) {
            std::ostringstream text;
            text << place_ << ": ";
            (text << ... << parts);
            texts_.push_back(text.str());
        }
    }

    /// A requirement: something is added when it does not hold.
    template <class... Parts> void Require(bool holds, Parts const&... parts) {
        if (!holds) {
            Add(parts...);
        }
    }

    std::size_t Count() const { return count_; }
    void Print(std::ostream& stream) const {
        for (std::string const& text : texts_) {
            stream << text << '\n';
        }
    }

private:
    static constexpr std::size_t most_of_a_place = 5;

    std::string place_;
    std::map<std::string, std::size_t> of_place_;
    std::vector<std::string> texts_;
    std::size_t count_ = 0;
};

} // namespace cpm::invariants

#endif
