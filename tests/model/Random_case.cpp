// SPDX-License-Identifier: MIT
#include "Random_case.h"

#include <algorithm>
#include <random>
#include <set>
#include <sstream>
#include <utility>

namespace cpm::model {

namespace {

/// Random numbers that do not depend on a library's own distributions. Two draws never stand in one
/// expression whose order of evaluation is the compiler's choice.
class Dice {
public:
    explicit Dice(std::uint32_t seed) : engine_(seed) {}

    unsigned Below(unsigned n) {
        return static_cast<unsigned>((static_cast<std::uint64_t>(engine_()) * n) >> 32);
    }
    unsigned Between(unsigned low, unsigned high) { return low + Below(high - low + 1); }
    bool Percent(unsigned p) { return Below(100) < p; }

    template <typename T> T const& Pick(std::vector<T> const& from) {
        return from[Below(static_cast<unsigned>(from.size()))];
    }

    template <typename T> void Shuffle(std::vector<T>& items) {
        for (auto left = static_cast<unsigned>(items.size()); left > 1; --left) {
            std::swap(items[left - 1], items[Below(left)]);
        }
    }

private:
    std::mt19937 engine_;
};

using Text = std::string;
using Texts = std::vector<std::string>;
using Link = std::pair<unsigned, unsigned>;
using Network = std::vector<Link>;

// --- Networks. Every size is bounded: the model walks all orders in which a directed clique can
// grow and all k-subsets of a clique, and writes a report for each of them. Ten nodes where all
// may be linked, sixteen nodes in cliques of six and 3^4 cliques of a multipartite graph keep the
// worst case at some ten thousand steps. ---

void Add_clique(Network& network, std::vector<unsigned> const& nodes) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (std::size_t j = i + 1; j < nodes.size(); ++j) {
            network.push_back({nodes[i], nodes[j]});
        }
    }
}

Network Sparse(Dice& dice) {
    Network network;
    unsigned const n = dice.Between(2, 24);
    for (unsigned i = dice.Between(1, 2 * n); i > 0; --i) {
        network.push_back({dice.Below(n), dice.Below(n)});
    }
    return network;
}

Network Dense(unsigned most_nodes, Dice& dice) {
    Network network;
    unsigned const n = dice.Between(3, most_nodes);
    unsigned const density = dice.Percent(30) ? 100 : dice.Between(40, 95);
    for (unsigned a = 0; a < n; ++a) {
        for (unsigned b = a + 1; b < n; ++b) {
            if (dice.Percent(density)) {
                network.push_back({a, b});
            }
        }
    }
    return network;
}

Network Overlapping_cliques(Dice& dice) {
    Network network;
    unsigned const n = dice.Between(5, 16);
    for (unsigned left = dice.Between(2, 7); left > 0; --left) {
        std::set<unsigned> nodes;
        for (unsigned size = dice.Between(3, 6); size > 0; --size) {
            nodes.insert(dice.Below(n));
        }
        Add_clique(network, {nodes.begin(), nodes.end()});
    }
    return network;
}

/// Cliques in a row, each sharing some nodes with the one before.
Network Chain_of_cliques(Dice& dice) {
    Network network;
    unsigned const size = dice.Between(3, 5);
    unsigned const shared = dice.Below(size);
    unsigned const closed = dice.Percent(30) ? dice.Between(6, 12) : 1000;
    for (unsigned start = 0, left = dice.Between(2, 6); left > 0; --left) {
        std::vector<unsigned> nodes;
        for (unsigned i = 0; i < size; ++i) {
            nodes.push_back((start + i) % closed);
        }
        Add_clique(network, nodes);
        start += size - shared;
    }
    return network;
}

Network Multipartite(Dice& dice) {
    Network network;
    unsigned const parts = dice.Between(2, 4);
    unsigned const width = dice.Between(1, 3);
    for (unsigned a = 0; a < parts * width; ++a) {
        for (unsigned b = a + 1; b < parts * width; ++b) {
            if (a / width != b / width) {
                network.push_back({a, b});
            }
        }
    }
    return network;
}

/// A ring or path, perhaps with links to the next but one, perhaps with a hub in the middle.
Network Ring(Dice& dice) {
    Network network;
    unsigned const n = dice.Between(3, 12);
    bool const open = dice.Percent(30);
    unsigned const reach = dice.Between(1, 3);
    for (unsigned a = 0; a < n; ++a) {
        for (unsigned step = 1; step <= reach; ++step) {
            if (!open || a + step < n) {
                network.push_back({a, (a + step) % n});
            }
        }
    }
    if (dice.Percent(40)) {
        for (unsigned a = 0; a < n; ++a) {
            network.push_back({a, n});
        }
    }
    return network;
}

Network Star(Dice& dice) {
    Network network;
    for (unsigned a = dice.Between(1, 15); a > 0; --a) {
        network.push_back({0, a});
    }
    return network;
}

/// Nodes linked to all of a core of two to five, which is all that their cliques share.
Network Core_with_satellites(Dice& dice) {
    Network network;
    std::vector<unsigned> core{0, 1};
    for (unsigned size = dice.Pick<unsigned>({2, 3, 4, 5, 5}); core.size() < size;) {
        core.push_back(static_cast<unsigned>(core.size()));
    }
    Add_clique(network, core);
    for (unsigned left = dice.Between(2, 4), satellite = 5; left > 0; --left, ++satellite) {
        for (unsigned node : core) {
            network.push_back({node, satellite});
        }
    }
    return network;
}

/// Nodes in groups that are dense, and some links between any two.
Network Groups(unsigned n, bool directed, Dice& dice) {
    Network network;
    unsigned const density = dice.Between(50, 100);
    for (unsigned left = 1 + n / dice.Between(2, 6); left > 0; --left) {
        unsigned const begin = dice.Below(n);
        unsigned const reach = dice.Between(6, 30);
        std::vector<unsigned> nodes;
        for (unsigned size = dice.Between(3, directed ? 7 : 12); size > 0; --size) {
            nodes.push_back((begin + dice.Below(reach)) % n);
        }
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            for (std::size_t j = i + 1; j < nodes.size(); ++j) {
                if (nodes[i] != nodes[j] && dice.Percent(density)) {
                    network.push_back({nodes[i], nodes[j]});
                }
            }
        }
    }
    for (unsigned node = 0; node < n; ++node) {
        network.push_back({node, dice.Below(n)});
    }
    return network;
}

/// Thousands of nodes with a few links each; among them small cliques, and up to three large ones
/// that may share nodes.
Network Large(unsigned largest, Dice& dice) {
    Network network;
    unsigned const n = dice.Between(1000, 4000);
    for (unsigned left = n * dice.Between(1, 3); left > 0; --left) {
        unsigned const from = dice.Below(n);
        network.push_back({from, dice.Below(n)});
    }
    unsigned const n_large = dice.Between(1, 3);
    unsigned const middle = dice.Below(n);
    for (unsigned i = dice.Between(20, 80); i > 0; --i) {
        unsigned const size = i > n_large ? dice.Between(3, std::min(largest, 12U))
                                          : dice.Between(largest - largest / 8, largest);
        unsigned const begin = i > n_large ? dice.Below(n) : middle;
        unsigned const reach = size + dice.Between(1, i > n_large ? 10 : 2 * size);
        std::set<unsigned> nodes;
        while (nodes.size() < size) {
            nodes.insert((begin + dice.Below(reach)) % n);
        }
        Add_clique(network, {nodes.begin(), nodes.end()});
    }
    return network;
}

Network Any_network(Dice& dice) {
    switch (dice.Below(18)) {
    case 0:
        return {};
    case 1:
        return Star(dice);
    case 2:
    case 3:
        return Sparse(dice);
    case 4:
    case 5:
    case 6:
        return Dense(10, dice);
    case 7:
    case 8:
        return Ring(dice);
    case 9:
        return Multipartite(dice);
    case 16:
    case 17:
        return Core_with_satellites(dice);
    case 10:
    case 11:
        return Chain_of_cliques(dice);
    default:
        return Overlapping_cliques(dice);
    }
}

/// Turns some links round and doubles some in the other direction.
void Direct(Network& network, Dice& dice) {
    unsigned const turned = dice.Pick<unsigned>({0, 0, 30, 50, 50});
    unsigned const mutual = dice.Pick<unsigned>({0, 0, 10, 30, 50, 100});
    Network both;
    for (auto& [a, b] : network) {
        if (dice.Percent(turned)) {
            std::swap(a, b);
        }
        if (dice.Percent(mutual)) {
            both.push_back({b, a});
        }
    }
    network.insert(network.end(), both.begin(), both.end());
}

// --- Names and weights. ---

/// What stands between the blanks.
Texts Words(Text const& text) {
    std::istringstream in(text);
    Texts words;
    for (Text word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

Text Odd_bytes(Dice& dice) {
    Text name;
    for (unsigned left = dice.Between(1, 4); left > 0; --left) {
        char c = static_cast<char>(dice.Below(256));
        if (Text(" \t\n\v\f\r").find(c) != Text::npos) {
            c = '#';
        }
        name += c;
    }
    return name;
}

Texts Names(unsigned n, Dice& dice) {
    static Texts const far{"é",    "日本", "ß",   "zażółć", "🙂", "Ω",    "-5",    "0.5", "\"q\"",
                           "a\\b", "-0",   "x#1", "a:b",    "k=3",  "'it'", "100%s", "%d%n"};
    unsigned const style = dice.Below(8);
    std::set<Text> used;
    Texts names;
    while (names.size() < n) {
        Text const number = std::to_string(names.size() + 1);
        Text name;
        if (style < 3) {
            name = number;
        } else if (style == 3) {
            name = Text(1, static_cast<char>('a' + names.size() % 26));
        } else if (style == 4) {
            name = std::to_string(dice.Below(100000));
        } else if (style == 5) {
            name = Text(dice.Between(1, 4), 'a');
            name.back() = dice.Percent(50) ? 'a' : 'b';
        } else if (style == 6) {
            name = dice.Pick(far);
        } else {
            name = Odd_bytes(dice);
        }
        if (used.contains(name)) {
            name += number;
        }
        if (used.insert(name).second) {
            names.push_back(name);
        }
    }
    dice.Shuffle(names);
    return names;
}

enum class Style { none, whole, tied, decimals, with_zero, negative, spelled, equal };

struct Weights {
    Style style = Style::none;
    Text equal;      // what links weigh in the last style:
    unsigned core{}; // those among the first nodes, this many; all others weigh 9

    bool Any() const { return style != Style::none; }
};

Weights Any_weights(Dice& dice) {
    // At these weights and a threshold of the same value the sums of logarithms for five and more
    // nodes fall on either side of the threshold, depending on the order of the additions. -1 has
    // no logarithm.
    static Texts const equal{"0.04", "0.13", "0.2", "0.36", "0.45", "0.71", "0.14", "3", "-1"};
    return {static_cast<Style>(dice.Below(8)), dice.Pick(equal), dice.Percent(50) ? 1000 : 5U};
}

Text Weight(Weights const& weights, Link const& link, Dice& dice) {
    static Texts const tied{"0.5", "1", "2"};
    static Texts const with_zero{"0", "1", "0.0", "2", "1"};
    static Texts const negative{"9", "9", "-1", "8", "2", "9", "3", "8", "-0", "9", "7", "9", "9"};
    static Texts const spelled =
        Words("1e2 0x10 +3 .5 5. 1.2.3 1.5abc 1e-400 -0 1E+2 0001 1e308 1e-5 "
              "123456.7 1234567 1e-310 12345678901234567890 3.14159265358979 1,5 2; 0.1");
    switch (weights.style) {
    case Style::none:
        return "";
    case Style::whole:
        return std::to_string(dice.Between(1, 9));
    case Style::tied:
        return dice.Pick(tied);
    case Style::decimals:
        return "0." + std::to_string(dice.Between(1, 999));
    case Style::with_zero:
        return dice.Pick(with_zero);
    case Style::negative:
        return dice.Pick(negative);
    case Style::equal:
        return std::max(link.first, link.second) < weights.core ? weights.equal : "9";
    case Style::spelled:
        break;
    }
    return dice.Pick(spelled);
}

// --- The link file. ---

Text Blanks(Dice& dice) {
    static Texts const any{"", " ", "\t", "  ", " \t "};
    return dice.Pick(any);
}

Text Separator(bool plain, Dice& dice) {
    static Texts const any{" ", "\t", "  ", "\t \t", "\v", "\f", "\r", " \v", "\f "};
    return plain ? " " : dice.Pick(any);
}

Text Line(Link const& link, Texts const& names, Weights const& weights, bool plain, Dice& dice) {
    Text line = names[link.first] + Separator(plain, dice) + names[link.second];
    if (weights.Any()) {
        line += Separator(plain, dice);
        line += Weight(weights, link, dice);
    }
    if (!plain && dice.Percent(20)) {
        line += Separator(plain, dice) + "extra # field";
    }
    if (!plain) {
        line.insert(0, Blanks(dice));
        line += Blanks(dice);
    }
    return line;
}

/// What a reader passes over, and a few lines it does not.
Text Filler(Texts const& names, Weights const& weights, Dice& dice) {
    static Texts const passed{"# comment", "#",  " \t# indented", "x", " y\t", "\r",
                              "-",         "\v", "#a b c"};
    unsigned const node = dice.Below(static_cast<unsigned>(names.size()));
    return dice.Percent(70) ? dice.Pick(passed) : Line({node, node}, names, weights, false, dice);
}

Text Fault(Dice& dice) {
    static Texts const faults{"",        " ",       "\t \t",  "ab",      "\r\r",      "\v\f",
                              "a b inf", "a b nan", "a b 1e", "a b abc", "a b 1e400", "a b -",
                              "a b +",   "a b .",   "a b e5", "a b",     "a  ",       "a a x",
                              "a b --1", "a b 1e+", " ab\r"};
    return dice.Percent(10) ? Text("a\0b", 3) : dice.Pick(faults);
}

Text Link_file(Network network, Weights const& weights, Dice& dice) {
    bool const plain = dice.Percent(60);
    bool const repeats = dice.Percent(40);
    Text const line_end = dice.Percent(10) ? "\r\n" : "\n";
    unsigned n = 1;
    for (auto const& [a, b] : network) {
        n = std::max({n, a + 1, b + 1});
    }
    Texts const names = Names(n, dice);
    if (dice.Percent(30)) {
        dice.Shuffle(network);
    }
    Texts lines;
    for (auto const& link : network) {
        lines.push_back(Line(link, names, weights, plain, dice));
        if (repeats && dice.Percent(10)) {
            lines.push_back(Line(link, names, weights, plain, dice));
        }
        if (repeats && dice.Percent(10)) {
            lines.push_back(Line({link.second, link.first}, names, weights, plain, dice));
        }
    }
    if (!plain) {
        for (unsigned left = dice.Below(5); left > 0; --left) {
            auto const at = dice.Below(static_cast<unsigned>(lines.size() + 1));
            lines.insert(lines.begin() + at, Filler(names, weights, dice));
        }
    }
    if (dice.Percent(6)) {
        auto const at = dice.Below(static_cast<unsigned>(lines.size() + 1));
        lines.insert(lines.begin() + at, Fault(dice));
    }
    Text text;
    for (auto const& line : lines) {
        text += line + line_end;
    }
    if (!text.empty() && dice.Percent(15)) {
        text.pop_back();
    }
    return text;
}

// --- Switches and what stands on the disk. ---

/// A switch with its values.
using Switch = Texts;

Text Threshold(Dice& dice) {
    static Texts const any{"0",  "0.5",  "1",     "2",      "1.5", "0.25",  "3",   "0.15327", "1e0",
                           ".5", " -1 ", " -0.5", "1e-400", "5",   "0.001", " -0", "1.0",     "4"};
    return dice.Pick(any);
}

/// The texts between the separators.
Texts Split(Text const& text, char separator) {
    Texts parts(1);
    for (char c : text) {
        if (c == separator) {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

/// One to three switches that the program refuses, or takes although they look odd.
void Add_odd_switches(std::vector<Switch>& switches, Dice& dice) {
    static Texts const odd = Split("-x;--help;-i;-w|abc;-w;-k;-k|-5;-k| -1;-k|1e20;-k|3x;-k|3|x;"
                                   "-d|-1;-d|x;-d;-t|0;-t|abc;-t| -1;-t;-o|;-o;-I;-I|nan;-W|inf;"
                                   "-W|0x10;-w|0.5;-W|0.5;-w|2;-W|1;-D;-U;-I|0.3;-t|5;-K|3;-h;"
                                   "-h|more;-D|v;-w|1e400;-w|;-k|;-U|-;-i|no such file;-i|;-I|1|2;"
                                   "---noname;-k|7 8;-k|3|-k;-w|1 ;-o|-;-h",
                                   ';');
    for (unsigned left = dice.Between(1, 3); left > 0; --left) {
        switches.push_back(Split(dice.Pick(odd), '|'));
    }
}

/// The path of the link file as the command line gives it; `tree` gets what the path needs.
Text Input_path(Case& test, Dice& dice) {
    static Texts const names{"net.txt", "net.txt", "net.txt", "my links.dat", "-", "n", "réseau"};
    Text const name = dice.Pick(names);
    Text const work = Text(work_directory) + "/";
    test.link_file = work + name;
    switch (dice.Below(12)) {
    case 0:
        return "./" + name;
    case 1:
        test.link_file = work + "sub/" + name;
        return "sub/" + name;
    case 2:
        test.tree[work + "sub"] = {};
        return "sub/../" + name;
    case 3:
        return "../" + work + name;
    case 4:
        return "@BOX@/" + work + name;
    case 5:
        return ".//" + name;
    case 6:
        test.tree["side"] = {};
        return "../side/.././" + work + name;
    case 7:
        test.link_file = "side/" + name;
        test.tree[work + name] = {Entry::Kind::symlink, "../side/" + name};
        return name;
    default:
        return name;
    }
}

/// Something at a path where results are to go, or next to it.
void Add_obstacle(Case& test, Text const& path, Dice& dice) {
    auto const put = [&](Text const& name, Entry::Kind kind, Text const& content) {
        test.tree.insert({name, {kind, content}});
    };
    switch (dice.Below(8)) {
    case 0:
        put(path, Entry::Kind::directory, "");
        break;
    case 1:
        put(path, Entry::Kind::directory, "");
        put(path + "/old", Entry::Kind::file, "kept\n");
        break;
    case 2:
        put(path, Entry::Kind::file, "in the way\n");
        break;
    case 3:
        put(path, Entry::Kind::file, "in the way\n");
        put(path + "1", Entry::Kind::directory, "");
        put(path + "2", Entry::Kind::file, "");
        put(path + "3", Entry::Kind::symlink, "nowhere");
        break;
    case 4:
        put(path, Entry::Kind::directory, "");
        put(path + "/sub", Entry::Kind::directory, "");
        break;
    case 5:
        put(path + "_there", Entry::Kind::directory, "");
        put(path, Entry::Kind::symlink, path.substr(path.rfind('/') + 1) + "_there");
        break;
    case 6:
        put(path, Entry::Kind::symlink, "nowhere");
        break;
    default:
        put(path, Entry::Kind::directory, "");
        put(path + "/dangling", Entry::Kind::symlink, "nowhere");
        put(path + "/a", Entry::Kind::file, "");
        break;
    }
}

Text Output_path(Case& test, Dice& dice) {
    Text const work = Text(work_directory) + "/";
    if (dice.Percent(40)) {
        Add_obstacle(test, work + "out", dice);
        return dice.Pick(Texts{"out", "./out", "@BOX@/" + work + "out", "../work/out"});
    }
    switch (dice.Below(16)) {
    case 0:
        return "a/b/c";
    case 1:
        return "out/";
    case 2:
        return "../other/out";
    case 3:
        return "@BOX@/deep/er/out";
    case 4:
        return "nosub/../out";
    case 5:
        return ".";
    case 6:
        return "-";
    case 7:
        return "a//b";
    case 8:
        return Text(300, 'n'); // no component can be that long
    case 9:
        test.tree[work + "file"] = {Entry::Kind::file, ""};
        return "file/out";
    case 10:
        test.tree[work + Text(255, 'n')] = {Entry::Kind::file, ""};
        return Text(255, 'n'); // cannot be renamed to a longer name
    case 11: {
        // The directory can still be made, some of the files in it have too long a path.
        Text path(dice.Between(4060, 4100), 'p');
        for (std::size_t at = 100; at + 1 < path.size(); at += 101) {
            path[at] = '/';
        }
        return path;
    }
    case 12: // the link file itself is moved aside
        return test.link_file.starts_with(work) ? test.link_file.substr(work.size()) : "out";
    case 13: // there only once "new" has been made
        test.tree[work + "full"] = {};
        test.tree[work + "full/cliques"] = {Entry::Kind::file, "kept\n"};
        return "new/../full";
    case 14: // the working directory, which holds the link file
        return "new/..";
    default:
        return "out";
    }
}

void Add_time_limit(Case& test, std::vector<Switch>& switches, bool strikes, Dice& dice) {
    static std::vector<std::pair<Text, long long>> const limits{
        {"0.5", 600'000}, {"1", 1'000'001}, {"2.75", 3'000'000}, {"1e-9", 1}, {"1e2", 200'000'000}};
    auto const& [limit, striking] = dice.Pick(limits);
    switches.push_back({"-t", limit});
    test.clock.step = strikes ? striking : 0;
}

/// Lets some attempts overrun at their first reading, or nearly all.
Clock Tossed(Dice& dice) {
    std::uint32_t const seed = dice.Below(1000000);
    unsigned const percent = dice.Percent(50) ? dice.Between(3, 94) : dice.Between(95, 99);
    return {.coin = {seed, percent}};
}

std::vector<Switch> Switches_of(Case& test, Weights const& weights, bool directed, bool hard,
                                Dice& dice) {
    static Texts const ks{"0",   "1",  "2",  "2",    "3",   "3",         "3",      "4",
                          "4",   "5",  "6",  "9",    "3.5", "2.5",       "2.4999", "3e0",
                          " 3 ", "+3", "03", "0.49", "12",  "2147483646"};
    static Texts const digits{"0", "1", "2", "3", "10", "17", "2.5", "0.4", "1e1"};
    std::vector<Switch> switches;
    bool const weighted = weights.Any();
    bool const intensity = weighted && !directed && dice.Percent(45);
    if (directed) {
        switches.push_back({"-D"});
    } else if (dice.Percent(15)) {
        switches.push_back({"-U"});
    }
    if (intensity) {
        bool const tie = weights.style == Style::equal && weights.equal != "-1" && dice.Percent(60);
        switches.push_back({"-I", tie ? weights.equal : Threshold(dice)});
    } else if (hard || dice.Percent(35)) {
        Add_time_limit(test, switches, hard || dice.Percent(70), dice);
    }
    if (weighted && dice.Percent(30)) {
        switches.push_back({"-w", Threshold(dice)});
    }
    if (weighted && dice.Percent(15)) {
        switches.push_back({"-W", dice.Percent(50) ? "9" : Threshold(dice)});
    }
    if (dice.Percent(35)) {
        switches.push_back({"-k", dice.Pick(ks)});
    }
    if (dice.Percent(15)) {
        switches.push_back({"-d", weighted && dice.Percent(5) ? "300" : dice.Pick(digits)});
    }
    if (dice.Percent(25)) {
        switches.push_back({"-o", Output_path(test, dice)});
    } else if (dice.Percent(20)) {
        Add_obstacle(test, test.link_file + (directed ? "_files-d" : "_files"), dice);
    }
    return switches;
}

void Add_links(Case& test, Network const& network, Weights const& weights, Dice& dice) {
    if (dice.Percent(98)) {
        test.tree[test.link_file] = {Entry::Kind::file, Link_file(network, weights, dice)};
        return;
    }
    if (dice.Percent(60)) {
        test.tree[test.link_file] = {}; // a directory
    }
    test.link_file.clear();
}

} // namespace

Case Random_case(std::uint32_t seed) {
    static Texts const program_names{"plexor", "plexor", "./plexor", "/usr/bin/plexor", "p @", ""};
    Dice dice(seed);
    Case test;
    bool const directed = dice.Percent(30);
    Weights const weights = Any_weights(dice);
    // Directed nodes that run out of time leave cores whose neighbourhoods hold exact cliques, the
    // only way in which those are dropped. No search goes deep then, so the network can be larger.
    bool const hard = directed && dice.Percent(30);
    Network network = hard ? Dense(18, dice) : Any_network(dice);
    if (weights.style == Style::equal && !directed && dice.Percent(40)) {
        network = Core_with_satellites(dice);
    }
    if (directed || dice.Percent(20)) {
        Direct(network, dice);
    }
    std::vector<Switch> switches;
    switches.push_back({"-i", Input_path(test, dice)});
    for (auto const& more : Switches_of(test, weights, directed, hard, dice)) {
        switches.push_back(more);
    }
    Add_links(test, network, weights, dice);
    if (dice.Percent(3)) {
        switches.erase(switches.begin());
    }
    if (dice.Percent(10)) {
        Add_odd_switches(switches, dice);
    }
    dice.Shuffle(switches);
    test.args.push_back(dice.Pick(program_names));
    if (dice.Percent(1)) {
        test.args.push_back(dice.Percent(50) ? "stray" : "-");
    }
    for (auto const& one : switches) {
        test.args.insert(test.args.end(), one.begin(), one.end());
        if (dice.Percent(2)) {
            test.args.push_back("ignored");
        }
    }
    auto const limits = std::count(test.args.begin(), test.args.end(), "-t");
    test.timed = limits > 0;
    if (limits > 1 && test.clock.step > 0) {
        // Which limit holds is left to the reader of the switches; this step is above all of them.
        test.clock.step = 1'000'000'000;
    }
    // Networks for which every attempt must overrun are too dense for the model to search.
    if (test.clock.step > 0 && !hard && dice.Percent(60)) {
        test.clock = Tossed(dice);
    }
    return test;
}

Case Coin_case(std::uint32_t seed) {
    Dice dice(seed);
    bool const directed = dice.Percent(50);
    bool const large = seed % 10 == 0;
    Network network = Groups(large ? dice.Between(70, 200) : dice.Between(5, 16), directed, dice);
    if (directed) {
        Direct(network, dice);
    }
    Case test;
    test.link_file = Text(work_directory) + "/net.txt";
    test.tree[test.link_file] = {Entry::Kind::file, Link_file(network, {}, dice)};
    test.args = {"plexor", "-i", "net.txt", "-t", "1"};
    if (directed) {
        test.args.emplace_back("-D");
    }
    test.timed = true;
    test.clock = Tossed(dice);
    return test;
}

Case Large_case(std::uint32_t seed) {
    Dice dice(seed);
    Case test;
    test.link_file = Text(work_directory) + "/net.txt";
    test.args = {"plexor", "-i", "net.txt"};
    auto const add = [&test](Texts const& args) {
        test.args.insert(test.args.end(), args.begin(), args.end());
    };
    Weights weights = Any_weights(dice);
    unsigned const kind = dice.Below(4);
    bool const directed = kind == 1 || (kind == 3 && dice.Percent(50));
    if (kind == 2 && !weights.Any()) {
        weights.style = Style::tied;
    }
    bool const above = weights.Any() && dice.Percent(30);
    bool const below = weights.Any() && dice.Percent(20);
    // The model looks at all pairs of cliques, of which a large clique that loses links here and
    // there leaves tens of thousands; links of equal weights go all together. And it walks the sets
    // of nodes inside a clique in the last three kinds.
    bool const thinned = (above || below) && weights.style != Style::equal;
    unsigned const largest = thinned ? 20 : 80;
    Network network = Large(std::vector<unsigned>{largest, 10, 8, 9}[kind], dice);
    if (directed) {
        Direct(network, dice);
        add({"-D"});
    } else if (dice.Percent(20)) {
        add({"-U"});
    }
    if (kind == 2) {
        add({"-I", Threshold(dice)});
    }
    if (kind == 3) {
        add({"-t", "1"});
        test.timed = true;
        test.clock = {.coin = {dice.Below(1000000), dice.Between(1, 15)}};
    }
    if (above) {
        add({"-w", Threshold(dice)});
    }
    if (below) {
        add({"-W", "9"});
    }
    if (dice.Percent(30)) {
        add({"-k", std::to_string(dice.Between(3, 12))});
    }
    if (dice.Percent(20)) {
        add({"-d", std::to_string(dice.Below(10))});
    }
    if (dice.Percent(20)) {
        add({"-o", "results"});
    }
    test.tree[test.link_file] = {Entry::Kind::file, Link_file(network, weights, dice)};
    return test;
}

} // namespace cpm::model
