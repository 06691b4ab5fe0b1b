// SPDX-License-Identifier: MIT
// Splitting a command line into switches and their values, and the map in which they are looked up.
#ifndef PLEXOR_SWITCHES_H
#define PLEXOR_SWITCHES_H

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace cpm {

/// A command line. An argument of two or more characters of which the first is "-" is a switch, so
/// that a negative number is one, too, and a lone "-" is not. All other arguments are values of the
/// switch before them; values before the first switch belong to a switch named "---noname". Of a
/// repeated switch only the values after its last occurrence count.
class Switches {
public:
    /// Switch, with its "-", to its values.
    using Param_map = std::map<std::string, std::vector<std::string>>;

    /// The first argument is the program's name. Throws Xerror_msg when there is none.
    Switches(int argc, char const* const* argv);
    explicit Switches(std::vector<std::string> const& arguments);
    virtual ~Switches() = default;
    Switches(Switches const&) = default;
    Switches& operator=(Switches const&) = default;

    virtual Param_map Params() const;
    virtual std::string Prog_name() const;
    /// Takes another command line in place of the one held.
    virtual void Construct(std::vector<std::string> const& arguments);

private:
    std::string prog_name_;
    Param_map params_;
};

/// A std::map that can be indexed when it is const: a missing key is an error then.
template <class Key, class Value, class Order = std::less<Key>,
          class Allocator = std::allocator<std::pair<Key const, Value>>>
class gmap : public std::map<Key, Value, Order, Allocator> {
public:
    using Base = std::map<Key, Value, Order, Allocator>;

    explicit gmap(Base const& other) : Base(other) {}
    virtual ~gmap() = default;
    gmap(gmap const&) = default;
    gmap& operator=(gmap const&) = default;

    using Base::operator[];
    /// Throws std::logic_error when the key is missing.
    Value const& operator[](Key const& key) const {
        auto const place = this->find(key);
        if (place == this->end()) {
            throw std::logic_error("ERROR: gmap:: Missing Key in \n const T & gmap[] const.\n");
        }
        return place->second;
    }
};

} // namespace cpm

#endif
