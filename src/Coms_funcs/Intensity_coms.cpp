// SPDX-License-Identifier: MIT
// Communities by link weight intensity.
//
// Takes    the k-cliques, lexicographic and each once, the index links and the threshold.
// Leaves   the communities: their nodes, and what their links are made from when asked for.
// Order    communities by their first k-clique: each label is replaced by the smallest it is
//          connected with, which is the number of that k-clique. Within a community everything
//          goes by the numbers of the k-cliques. How they were found to be adjacent does not show.
// Cost     the k sets of k-1 nodes in each k-clique are looked up once in a hash table, and a set
//          is tested at most once. Memory: 8 bytes a k-clique and a table that is kept below the
//          size of the k-clique list; then 4 bytes a k-clique and the communities.
// Tested   Intensity_coms_test.cpp, the runs against the plain model.
#include "Coms_funcs/Intensity_coms.h"

#include "Plexor_io/Reports.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>
#include <utility>

namespace cpm {

namespace {

using K_clique_number = std::uint32_t;

constexpr K_clique_number none = std::numeric_limits<K_clique_number>::max();

std::uint64_t Mixed(Node node) {
    std::uint64_t x = node * 0x9E3779B97F4A7C15U;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBU;
    return x ^ (x >> 31);
}

// A k-clique without the node at one place.
struct Part {
    K_clique_number k_clique;
    std::uint32_t left_out;
};

bool Same_nodes(Node_set a, std::size_t left_out_a, Node_set b, std::size_t left_out_b) {
    if (left_out_a > left_out_b) {
        std::swap(a, b);
        std::swap(left_out_a, left_out_b);
    }
    auto const equal = [&](std::size_t in_a, std::size_t in_b, std::size_t count) {
        return std::equal(a.begin() + static_cast<std::ptrdiff_t>(in_a),
                          a.begin() + static_cast<std::ptrdiff_t>(in_a + count),
                          b.begin() + static_cast<std::ptrdiff_t>(in_b));
    };
    return equal(left_out_b + 1, left_out_b + 1, a.size() - left_out_b - 1) &&
           equal(left_out_a + 1, left_out_a, left_out_b - left_out_a) && equal(0, 0, left_out_a);
}

// A hash table of sets of k-1 nodes. A set is not stored; it is known by a k-clique that holds it.
class Shared_sets {
public:
    enum class Verdict : std::uint32_t { untested, passed, failed };
    struct Entry {
        std::uint32_t hash = 0;
        Verdict verdict = Verdict::untested;
        Part part = {none, 0}; ///< no k-clique: the place is free
    };

    explicit Shared_sets(K_clique_list const& k_cliques) : k_cliques_(k_cliques) {}

    /// Forgets all sets. `n_sets` is how many may come; the table starts small whatever it says,
    /// since few of them may be different.
    void Start(std::size_t n_sets) {
        constexpr std::size_t enough = 256;
        Clear(2 * std::bit_ceil(std::min(n_sets, enough)));
    }

    /// The entry of the set, which is a new one when it was not there; it stays where it is until
    /// the next call.
    Entry& Find(Part part, std::uint32_t hash) {
        if (2 * n_used_ >= entries_.size()) {
            Grow();
        }
        Node_set const nodes = k_cliques_[part.k_clique];
        std::size_t const mask = entries_.size() - 1;
        std::size_t place = hash & mask;
        while (entries_[place].part.k_clique != none) {
            Entry& entry = entries_[place];
            if (entry.hash == hash &&
                Same_nodes(nodes, part.left_out, k_cliques_[entry.part.k_clique],
                           entry.part.left_out)) {
                return entry;
            }
            place = (place + 1) & mask;
        }
        entries_[place] = {hash, Verdict::untested, part};
        ++n_used_;
        return entries_[place];
    }

private:
    void Clear(std::size_t capacity) {
        entries_.clear();
        entries_.Resize(capacity, Entry());
        n_used_ = 0;
    }

    void Grow() {
        Flat_array<Entry> old;
        old.Swap(entries_);
        entries_.Resize(2 * old.size(), Entry());
        std::size_t const mask = entries_.size() - 1;
        for (Entry const& entry : old) {
            if (entry.part.k_clique != none) {
                std::size_t place = entry.hash & mask;
                while (entries_[place].part.k_clique != none) {
                    place = (place + 1) & mask;
                }
                entries_[place] = entry;
            }
        }
    }

    K_clique_list const& k_cliques_;
    Flat_array<Entry> entries_; ///< a power of two of them, at most half of them used
    std::size_t n_used_ = 0;
};

// The k-cliques by their second node.
class By_second_node {
public:
    explicit By_second_node(K_clique_list const& k_cliques) {
        Node last = 0;
        for (std::size_t i = 0; i < k_cliques.size(); ++i) {
            last = std::max(last, k_cliques[i][1]);
        }
        ends_.Resize(std::size_t{last} + 1, 0);
        for (std::size_t i = 0; i < k_cliques.size(); ++i) {
            ++ends_[k_cliques[i][1]];
        }
        K_clique_number before = 0;
        for (K_clique_number& end : ends_) {
            std::swap(end, before);
            before += end;
        }
        numbers_.Resize_uninitialised(k_cliques.size());
        for (std::size_t i = 0; i < k_cliques.size(); ++i) {
            numbers_[ends_[k_cliques[i][1]]++] = static_cast<K_clique_number>(i);
        }
    }

    /// One more than the largest second node.
    Node N_nodes() const { return static_cast<Node>(ends_.size()); }
    std::span<K_clique_number const> operator[](Node node) const {
        return {numbers_.begin() + (node == 0 ? 0 : ends_[node - 1]),
                numbers_.begin() + ends_[node]};
    }

private:
    Flat_array<K_clique_number> ends_; ///< by node
    Flat_array<K_clique_number> numbers_;
};

// Reports each k-clique when its turn has come.
class Progress {
public:
    Progress(K_clique_list const& k_cliques, double intensity, Console& console)
        : total_(static_cast<std::uint32_t>(k_cliques.size())), console_(console) {
        title1_.Put(" Extracting communities from the k-cliques at k=");
        title1_.Put_number(k_cliques.K());
        title1_.Put(',');
        title2_.Put(" and a link weight intensity threshlod I=");
        title2_.Put_fixed(intensity, 6);
        title2_.Put(':');
    }
    void Report(K_clique_number next) {
        Clique_find_report_sub_routines::Report_progress(
            title1_.View(), title2_.View(), "k-cliques", total_ - next, total_, console_);
        console_.Message_done();
    }

private:
    std::uint32_t total_;
    Console& console_;
    Text title1_;
    Text title2_;
};

// Unites k-cliques that share k-1 nodes of enough intensity, k at least 3.
//
// The shared sets are looked for by their smallest node: sets that begin with one node come from
// the k-cliques that begin with it, in which any other node is left out, and from those that have
// it second, without their first node. So the table holds the sets of one node at a time, and the
// k-cliques that begin with it, whose turn to be reported has come, lie together.
class Adjacent_k_cliques {
public:
    Adjacent_k_cliques(K_clique_list const& k_cliques, Coms_from_k_cls_sub::Labels& labels,
                       Link_rows const& rows, double intensity, Progress& progress)
        : k_cliques_(k_cliques), labels_(labels), test_(k_cliques.K(), rows, intensity),
          progress_(progress), by_second_(k_cliques), table_(k_cliques), mixed_(k_cliques.K()) {}

    void Unite_all() {
        K_clique_number next = 0;
        for (Node smallest = 0; smallest < by_second_.N_nodes(); ++smallest) {
            K_clique_number const begin = next;
            while (next < k_cliques_.size() && k_cliques_[next].front() == smallest) {
                ++next;
            }
            Unite_at(smallest, begin, next);
        }
    }

private:
    // `begin` to `end` - 1 are the k-cliques that begin with the smallest node of the sets.
    void Unite_at(Node smallest, K_clique_number begin, K_clique_number end) {
        std::span<K_clique_number const> const second = by_second_[smallest];
        // Many sets are taken in several rounds, a class of hash values in each, so that the table
        // stays small beside the k-cliques.
        std::size_t const n_sets = second.size() + (end - begin) * (mixed_.size() - 1);
        n_rounds_ = n_sets / Most_sets_a_round() + 1;
        for (round_ = 0; round_ < n_rounds_; ++round_) {
            table_.Start(n_sets / n_rounds_);
            for (K_clique_number const i : second) {
                Mix(i);
                Meet({i, 0});
            }
            for (K_clique_number i = begin; i < end; ++i) {
                if (round_ == 0) {
                    progress_.Report(i);
                }
                Mix(i);
                for (std::uint32_t left_out = 1; left_out < mixed_.size(); ++left_out) {
                    Meet({i, left_out});
                }
            }
        }
    }

    std::size_t Most_sets_a_round() const {
        constexpr std::size_t least = 1U << 16;
        constexpr std::size_t most = 1U << 30;
        constexpr std::size_t bytes_a_set = 4 * sizeof(Shared_sets::Entry);
        std::size_t const list_bytes = k_cliques_.size() * k_cliques_.K() * sizeof(Node);
        return std::clamp(list_bytes / bytes_a_set, least, most);
    }

    // The hash of a set is the sum of its mixed nodes, so that leaving one out is a subtraction.
    void Mix(K_clique_number i) {
        mixed_sum_ = 0;
        for (std::size_t place = 0; place < mixed_.size(); ++place) {
            mixed_[place] = Mixed(k_cliques_[i][place]);
            mixed_sum_ += mixed_[place];
        }
    }

    // Unites the k-clique, mixed before, with the one that has brought in the same set, if any.
    void Meet(Part part) {
        std::uint64_t const hash = mixed_sum_ - mixed_[part.left_out];
        constexpr unsigned half = 32;
        if (((hash >> half) * n_rounds_) >> half != round_) {
            return;
        }
        using Verdict = Shared_sets::Verdict;
        Shared_sets::Entry& entry = table_.Find(part, static_cast<std::uint32_t>(hash));
        // The test costs more than all before it. It would not tell anything new about k-cliques
        // that are in one community already.
        if (entry.part.k_clique == part.k_clique || entry.verdict == Verdict::failed ||
            labels_.Get_uni_rules_recur(entry.part.k_clique) ==
                labels_.Get_uni_rules_recur(part.k_clique)) {
            return;
        }
        if (entry.verdict == Verdict::untested) {
            entry.verdict = test_.Check_intersection(k_cliques_[part.k_clique], part.left_out)
                                ? Verdict::passed
                                : Verdict::failed;
        }
        if (entry.verdict == Verdict::passed) {
            labels_.Unite(entry.part.k_clique, part.k_clique);
        }
    }

    K_clique_list const& k_cliques_;
    Coms_from_k_cls_sub::Labels& labels_;
    Coms_from_k_cls_sub::Shared_test test_;
    Progress& progress_;
    By_second_node by_second_;
    Shared_sets table_;
    std::uint64_t n_rounds_ = 1;
    std::uint64_t round_ = 0;
    Flat_array<std::uint64_t> mixed_; ///< the nodes of the k-clique under way
    std::uint64_t mixed_sum_ = 0;
};

// At k = 2 a shared set is a single node, which the test cannot deal with: the first one ends the
// run. Without any the k-cliques are pairs that have nothing to do with each other.
void Meet_single_nodes(K_clique_list const& k_cliques, Link_rows const& rows, Progress& progress) {
    Node last_node = 0;
    for (std::size_t i = 0; i < k_cliques.size(); ++i) {
        last_node = std::max(last_node, k_cliques[i].back());
    }
    Flat_array<K_clique_number> last_with(std::size_t{last_node} + 1, 0);
    for (std::size_t i = 0; i < k_cliques.size(); ++i) {
        for (Node const node : k_cliques[i]) {
            last_with[node] = static_cast<K_clique_number>(i);
        }
    }
    Sub_links sub_links;
    double min_log_w = 0;
    for (K_clique_number i = 0; i < k_cliques.size(); ++i) {
        progress.Report(i);
        for (Node const& node : k_cliques[i]) {
            if (last_with[node] > i) {
                Get_sub_links_and_min_link_w({&node, 1}, rows, sub_links, min_log_w);
            }
        }
    }
}

// The k-cliques of each community, the last one first, and the links made from them.
class Community_blocks {
public:
    /// `community_of` tells the community of each k-clique.
    Community_blocks(K_clique_list const& k_cliques, Link_rows rows,
                     Flat_array<std::uint32_t> const& community_of, std::size_t n_communities)
        : k_cliques_(k_cliques), rows_(std::move(rows)) {
        begins_.Resize(n_communities + 1, 0);
        for (std::uint32_t const community : community_of) {
            ++begins_[community];
        }
        K_clique_number before = 0;
        for (K_clique_number& begin : begins_) {
            before += begin;
            begin = before;
        }
        numbers_.Resize_uninitialised(community_of.size());
        for (std::size_t i = 0; i < community_of.size(); ++i) {
            numbers_[--begins_[community_of[i]]] = static_cast<K_clique_number>(i);
        }
    }

    std::size_t size() const { return begins_.size() - 1; }
    std::span<K_clique_number const> operator[](std::size_t community) const {
        return {numbers_.begin() + begins_[community], numbers_.begin() + begins_[community + 1]};
    }

    void Links(std::size_t community, Take_links const& take) {
        constexpr std::size_t a_piece = 4096;
        piece_.clear();
        for (K_clique_number const i : (*this)[community]) {
            Number_links(k_cliques_[i]);
            piece_.Append(link_numbers_);
            if (piece_.size() >= a_piece) {
                take.numbers(piece_);
                piece_.clear();
            }
        }
        if (!piece_.empty()) {
            take.numbers(piece_);
        }
    }

private:
    // Neighbours in a lexicographic order often begin with the same nodes; the links among these
    // are numbered already.
    void Number_links(Node_set nodes) {
        auto const differ = std::ranges::mismatch(nodes, last_).in1;
        auto const n_same = static_cast<std::size_t>(differ - nodes.begin());
        last_ = nodes;
        std::size_t const k = nodes.size();
        link_numbers_.Resize_uninitialised(k * (k - 1) / 2);
        Link_number* row = link_numbers_.begin(); // the links of node a to the later ones
        for (std::size_t a = 0; a + 1 < k; ++a) {
            std::size_t const first = std::max(n_same, a + 1);
            std::size_t next =
                first > a + 1 ? std::size_t{row[first - a - 2]} + 1 : rows_.Begin(nodes[a]);
            for (std::size_t b = first; b < k; ++b) {
                std::size_t const link = rows_.Find(nodes[a], nodes[b], next);
                row[b - a - 1] = static_cast<Link_number>(link);
                next = link + 1;
            }
            row += k - a - 1;
        }
    }

    K_clique_list const& k_cliques_;
    Link_rows rows_;
    Flat_array<K_clique_number> begins_;
    Flat_array<K_clique_number> numbers_;
    Node_set last_; ///< the k-clique whose links are numbered; empty: none yet
    Flat_array<Link_number> link_numbers_;
    Flat_array<Link_number> piece_;
};

// The nodes of each community.
void List_nodes(K_clique_list const& k_cliques, Community_blocks const& blocks, Set_list& sets) {
    Flat_array<std::uint32_t> listed_for; // node -> 1 + the last community that it was listed for
    Flat_array<Node> nodes;
    for (std::size_t community = 0; community < blocks.size(); ++community) {
        nodes.clear();
        for (K_clique_number const i : blocks[community]) {
            Node_set const k_clique = k_cliques[i];
            if (k_clique.back() >= listed_for.size()) {
                listed_for.Resize(std::size_t{k_clique.back()} + 1 + listed_for.size(), 0);
            }
            for (Node const node : k_clique) {
                if (listed_for[node] != community + 1) {
                    listed_for[node] = static_cast<std::uint32_t>(community + 1);
                    nodes.push_back(node);
                }
            }
        }
        std::ranges::sort(nodes);
        sets.Add(nodes);
    }
    sets.Shrink_to_fit();
}

} // namespace

void Intensity_coms_from_k_cliques(K_clique_list const& k_cliques, Communities& coms,
                                   Index_links const& links, double intensity, Console& console) {
    Link_rows rows(links);
    Coms_from_k_cls_sub::Labels labels(k_cliques.size());
    Coms_from_k_cls_sub::Get_node_com_inds(k_cliques, labels, rows, intensity, console);
    Flat_array<std::uint32_t> community_of = std::move(labels).Get_trans_rules();
    std::size_t n_communities = 0;
    for (std::uint32_t const community : community_of) {
        n_communities = std::max(n_communities, std::size_t{community} + 1);
    }
    auto const blocks =
        std::make_shared<Community_blocks>(k_cliques, std::move(rows), community_of, n_communities);
    community_of.Release();
    coms.nodes.clear();
    coms.cliques.clear();
    List_nodes(k_cliques, *blocks, coms.nodes);
    coms.n_exact = static_cast<std::uint32_t>(n_communities);
    coms.links = [blocks](std::size_t community, Take_links const& take) {
        blocks->Links(community, take);
    };
}

namespace Coms_from_k_cls_sub {

Shared_test::Shared_test(std::uint32_t k, Link_rows const& rows, double intensity)
    : rows_(rows), n_links_(Number_of_links(k - 1)),
      log_threshold_(Log_threshold(intensity, k - 1)) {}

bool Shared_test::Check_intersection(Node_set k_clique, std::size_t left_out) {
    Take_shared_logs(k_clique, left_out);
    double const min_log_w = Smallest_log(shared_logs_);
    double const* log_w = shared_logs_.begin();
    double sum = 0;
    // The links among the nodes before `place` are in the sum.
    for (std::size_t place = 1; place + 1 < k_clique.size(); ++place) {
        auto const counted = static_cast<double>(place);
        double const bound = (n_links_ - counted * (counted - 1) / 2) * min_log_w + sum;
        // Deliberate: what is not a number ends the walk as well, and the set has passed.
        if (!(log_threshold_ >= bound)) {
            return true;
        }
        for (std::size_t earlier = 0; earlier < place; ++earlier) {
            sum += *log_w++;
        }
    }
    return sum > log_threshold_;
}

// The k-cliques come in lexicographic order mostly, so that only the last nodes of this one are new
// and their links have to be looked up.
void Shared_test::Take_shared_logs(Node_set k_clique, std::size_t left_out) {
    auto const differ = std::ranges::mismatch(k_clique, last_).in1;
    auto const n_same = static_cast<std::size_t>(differ - k_clique.begin());
    if (n_same < k_clique.size()) {
        double min_log_w = 0;
        Get_sub_links_and_min_link_w(k_clique, rows_, sub_links_, min_log_w, n_same);
        last_.clear();
        last_.Append(k_clique);
    }
    shared_logs_.clear();
    for (std::size_t place = 1; place < k_clique.size(); ++place) {
        std::span<double const> const to_earlier(sub_links_.To_earlier(place), place);
        if (left_out > place) {
            shared_logs_.Append(to_earlier);
        } else if (left_out < place) {
            shared_logs_.Append(to_earlier.first(left_out));
            shared_logs_.Append(to_earlier.subspan(left_out + 1));
        }
    }
}

Labels::Labels(std::size_t n_k_cliques) {
    rule_.Resize_uninitialised(n_k_cliques);
    for (std::size_t i = 0; i < n_k_cliques; ++i) {
        rule_[i] = static_cast<std::uint32_t>(i);
    }
}

std::uint32_t Labels::Get_uni_rules_recur(std::uint32_t label) {
    while (rule_[label] != label) {
        rule_[label] = rule_[rule_[label]]; // halves the way for the next time
        label = rule_[label];
    }
    return label;
}

void Labels::Unite(std::uint32_t a, std::uint32_t b) {
    a = Get_uni_rules_recur(a);
    b = Get_uni_rules_recur(b);
    rule_[std::max(a, b)] = std::min(a, b);
}

Flat_array<std::uint32_t> Labels::Get_trans_rules() && {
    // Invariant: the entries before i are communities, those from i on are rules.
    // Relies on: a rule never leads to a larger label.
    std::uint32_t n_communities = 0;
    for (std::size_t i = 0; i < rule_.size(); ++i) {
        rule_[i] = rule_[i] == i ? n_communities++ : rule_[rule_[i]];
    }
    return std::move(rule_);
}

void Get_node_com_inds(K_clique_list const& k_cliques, Labels& labels, Link_rows const& rows,
                       double intensity, Console& console) {
    if (k_cliques.empty()) {
        return;
    }
    Progress progress(k_cliques, intensity, console);
    if (k_cliques.K() == 2) {
        Meet_single_nodes(k_cliques, rows, progress);
    } else {
        Adjacent_k_cliques(k_cliques, labels, rows, intensity, progress).Unite_all();
    }
}

} // namespace Coms_from_k_cls_sub

} // namespace cpm
