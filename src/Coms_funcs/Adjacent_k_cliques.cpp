// SPDX-License-Identifier: MIT
// Takes    the k-cliques, lexicographic and each once, the links' weights and the threshold.
// Leaves   the communities as sets of k-cliques.
// Order    how k-cliques are found to be adjacent does not show.
// Cost     the k sets of k-1 nodes in each k-clique are looked up once in a hash table, and a
//          set is tested at most once. Memory: 4 bytes per k-clique and a table that is kept below
//          the size of the k-clique list.
// Tested   Intensity_coms_test.cpp, the runs against the plain model.
#include "Coms_funcs/Adjacent_k_cliques.h"

#include "support/Grouping.h"
#include "support/Hash_slots.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <utility>

namespace cpm::Coms_from_k_cls_sub {

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

enum class Verdict : std::uint32_t { untested, passed, failed };

// A set of k-1 nodes. It is not stored; it is known by a k-clique that holds it.
struct Shared_set {
    std::uint32_t hash = 0;
    Verdict verdict = Verdict::untested;
    Part part = {none, 0};
    bool Used() const { return part.k_clique != none; }
};

// The k-cliques by their second node.
Groups<K_clique_number, K_clique_number> By_second_node(K_clique_list const& k_cliques) {
    Node last = 0;
    for (std::size_t i = 0; i < k_cliques.size(); ++i) {
        last = std::max(last, k_cliques[i][1]);
    }
    return {k_cliques.size(), std::size_t{last} + 1, [&](std::size_t i) { return k_cliques[i][1]; },
            [](std::size_t i) { return i; }};
}

// Unites k-cliques that share k-1 nodes of enough intensity, k at least 3.
//
// The shared sets are looked for by their smallest node: sets that begin with one node come from
// the k-cliques that begin with it, in which any other node is left out, and from those that have
// it second, without their first node. So the table holds the sets of one node at a time, and the
// k-cliques that begin with it, whose turn to be reported has come, lie together.
class Adjacent_k_cliques {
public:
    Adjacent_k_cliques(K_clique_list const& k_cliques, Disjoint_sets& communities,
                       Link_rows const& rows, double intensity, Progress& progress)
        : k_cliques_(k_cliques), communities_(communities), test_(k_cliques.K(), rows, intensity),
          progress_(progress), by_second_(By_second_node(k_cliques)), mixed_(k_cliques.K()),
          total_(static_cast<std::uint32_t>(k_cliques.size())) {}

    void Unite_all() {
        K_clique_number next = 0;
        for (Node smallest = 0; smallest < by_second_.size(); ++smallest) {
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
        constexpr std::size_t enough_at_first = 256;
        n_rounds_ = n_sets / Max_sets_a_round() + 1;
        for (round_ = 0; round_ < n_rounds_; ++round_) {
            // Starts small whatever may come: few of the sets may be different.
            table_.Clear(std::min(static_cast<std::size_t>(n_sets / n_rounds_), enough_at_first));
            for (K_clique_number const i : second) {
                Mix(i);
                Meet({i, 0});
            }
            for (K_clique_number i = begin; i < end; ++i) {
                if (round_ == 0) {
                    progress_.K_cliques_joining_at(total_ - i, total_);
                }
                Mix(i);
                for (std::uint32_t left_out = 1; left_out < mixed_.size(); ++left_out) {
                    Meet({i, left_out});
                }
            }
        }
    }

    std::size_t Max_sets_a_round() const {
        constexpr std::size_t least = 1U << 16;
        constexpr std::size_t most = 1U << 30;
        constexpr std::size_t bytes_a_set = 4 * sizeof(Shared_set);
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
        Node_set const nodes = k_cliques_[part.k_clique];
        Shared_set& entry = table_.Find_or_add(
            {static_cast<std::uint32_t>(hash), Verdict::untested, part},
            [&](Shared_set const& other) {
                return Same_nodes(nodes, part.left_out, k_cliques_[other.part.k_clique],
                                  other.part.left_out);
            });
        // The test costs more than all before it. It would tell nothing new about k-cliques
        // that are in one community already.
        if (entry.part.k_clique == part.k_clique || entry.verdict == Verdict::failed ||
            communities_.Find(entry.part.k_clique) == communities_.Find(part.k_clique)) {
            return;
        }
        if (entry.verdict == Verdict::untested) {
            entry.verdict =
                test_.Check_intersection(nodes, part.left_out) ? Verdict::passed : Verdict::failed;
        }
        if (entry.verdict == Verdict::passed) {
            communities_.Unite(entry.part.k_clique, part.k_clique);
        }
    }

    K_clique_list const& k_cliques_;
    Disjoint_sets& communities_;
    Shared_test test_;
    Progress& progress_;
    Groups<K_clique_number, K_clique_number> by_second_;
    Hash_slots<Shared_set> table_;
    std::uint64_t n_rounds_ = 1;
    std::uint64_t round_ = 0;
    Flat_array<std::uint64_t> mixed_; ///< the nodes of the k-clique under way
    std::uint64_t mixed_sum_ = 0;
    std::uint32_t total_;
};

// At k = 2 a shared set is a single node, which the test cannot deal with: the first one ends the
// run. Without any the k-cliques are pairs that have nothing to do with each other.
void Meet_single_nodes(K_clique_list const& k_cliques, Link_rows const& rows, Progress& progress) {
    auto const total = static_cast<std::uint32_t>(k_cliques.size());
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
        progress.K_cliques_joining_at(total - i, total);
        for (Node const& node : k_cliques[i]) {
            if (last_with[node] > i) {
                Get_sub_links_and_min_link_w({&node, 1}, rows, sub_links, min_log_w);
            }
        }
    }
}

} // namespace

Shared_test::Shared_test(std::uint32_t k, Link_rows const& rows, double intensity)
    : rows_(rows), n_links_(Number_of_links(k - 1)),
      log_threshold_(Log_threshold(intensity, k - 1)) {}

bool Shared_test::Check_intersection(Node_set k_clique, std::size_t left_out) {
    assert(k_clique.size() >= 3 && left_out < k_clique.size());
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

void Get_node_com_inds(K_clique_list const& k_cliques, Disjoint_sets& communities,
                       Link_rows const& rows, double intensity, Progress& progress) {
    if (k_cliques.empty()) {
        return;
    }
    progress.K_cliques_joining_began(k_cliques.K(), intensity);
    if (k_cliques.K() == 2) {
        Meet_single_nodes(k_cliques, rows, progress);
    } else {
        Adjacent_k_cliques(k_cliques, communities, rows, intensity, progress).Unite_all();
    }
}

} // namespace cpm::Coms_from_k_cls_sub
