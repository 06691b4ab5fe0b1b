// SPDX-License-Identifier: MIT
// Runs the program in random directory trees with random paths for its results, and requires that
// nothing that was there before is changed or lost: every file, link and pipe is the same one with
// the same content, under its own name or, at most one, under the name that it was moved aside to;
// every directory is where it was; and all that is new stands in one directory that held nothing.
// In some runs another process puts links, pipes and directories into the way meanwhile. What comes
// of these depends on which of the two is quicker; what is required of them does not.
//   random_trees --program PATH [--seed N] [--runs N] [--one SEED]
#include "Box.h"
#include "support/Random_numbers.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace cpm::model {

namespace {

using Kind = Entry::Kind;
using Dice = test::Random_numbers;
using Texts = std::vector<std::string>;

// --- What is drawn. ---

// Few, so that paths meet what is there; most of them names that a run uses itself.
Texts const names{"out", "out1",    "out2",        "a",    "b",   "net.txt_files",    "graph",
                  "k=3", "cliques", "communities", "k=31", "new", "input_params.txt", "old"};

std::string Pick(Texts const& texts, Dice& dice) {
    return texts[dice.Below(static_cast<std::uint32_t>(texts.size()))];
}

/// Components of odd kinds between slashes, sometimes doubled. At most three lead upwards.
std::string Random_path(Dice& dice) {
    std::string path = dice.Percent(8) ? "@HERE@/" : "";
    unsigned ups = 0;
    for (std::uint32_t left = 1 + dice.Below(4); left > 0; --left) {
        bool const up = dice.Percent(20) && ups < 3;
        ups += up ? 1 : 0;
        path += up ? ".." : dice.Percent(10) ? "." : Pick(names, dice);
        path += left > 1 ? dice.Percent(10) ? "//" : "/" : "";
    }
    return path + (dice.Percent(10) ? "/" : "");
}

/// Up to three levels of entries below the directory.
void Add_entries(std::string const& directory, unsigned depth, std::uint32_t most, Tree& tree,
                 Dice& dice) {
    for (std::uint32_t left = dice.Below(most + 1); left > 0; --left) {
        std::string const path = directory + "/" + Pick(names, dice);
        if (tree.contains(path)) {
            continue;
        }
        std::uint32_t const kind = dice.Below(10);
        if (kind < 4) {
            tree[path] = {};
            if (depth < 3 && dice.Percent(50)) {
                Add_entries(path, depth + 1, 3, tree, dice);
            }
        } else if (kind < 6) {
            tree[path] = {Kind::file, "content of " + path + "\n"};
        } else if (kind < 9) {
            tree[path] = {Kind::symlink, Random_path(dice)};
        } else {
            tree[path] = {Kind::pipe, ""};
        }
    }
}

struct Case {
    Tree tree;
    Texts args; // after the program's name
};

// Far enough below the box that no path of a case leads up out of it, with all links on its way.
std::string const work = "1/2/3/4/5/6/7/8/9/10/11/12/13/14/15/16/17/18/19/20/work";
std::string const side = "1/2/3/4/5/6/7/8/9/10/11/12/13/14/15/16/17/18/19/20/side";
std::string const link_file = work + "/net.txt";

Case Random_case(Dice& dice) {
    Case drawn;
    drawn.tree[link_file] = {Kind::file, "ann bob\nbob cat\ncat ann\n"};
    Add_entries(work, 1, 8, drawn.tree, dice);
    drawn.tree[side] = {};
    Add_entries(side, 1, 4, drawn.tree, dice);
    drawn.args = {"-i", "net.txt"};
    if (dice.Percent(90)) {
        drawn.args.insert(drawn.args.end(),
                          {"-o", dice.Percent(4) ? "net.txt" : Random_path(dice)});
    }
    return drawn;
}

// --- What is on the disk. ---

/// What makes something the same thing as before, besides its content.
struct Identity {
    dev_t device = 0;
    ino_t inode = 0;
    mode_t mode = 0;
    timespec changed{};

    bool operator==(Identity const& other) const {
        return device == other.device && inode == other.inode && mode == other.mode &&
               changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
    }
};

struct Snapshot {
    Tree tree;
    std::map<std::string, Identity> identities;
};

Snapshot Look(std::string const& box) {
    Snapshot snapshot{Look_into(box), {}};
    for (auto const& [path, entry] : snapshot.tree) {
        struct stat status {};
        if (::lstat((box + "/" + path).c_str(), &status) != 0) {
            throw std::runtime_error("cannot look at " + path);
        }
        Identity& identity = snapshot.identities[path];
        identity = {status.st_dev, status.st_ino, status.st_mode, status.st_mtim};
        if (entry.kind == Kind::directory) {
            identity.changed = {}; // it may get new entries
        }
    }
    return snapshot;
}

std::string Parent(std::string const& path) {
    return path.substr(0, path.rfind('/'));
}

/// Empty when nothing is changed or lost; else what is. `n_moved` counts what was moved aside.
std::string What_is_wrong(Snapshot const& before, Snapshot const& after, unsigned& n_moved) {
    std::set<std::string> old_paths; // where what was there before is now
    for (auto const& [path, entry] : before.tree) {
        std::string now = path;
        auto const is_here = [&after, &then = entry,
                              &identity = before.identities.at(path)](std::string const& where) {
            auto const there = after.tree.find(where);
            return there != after.tree.end() && there->second == then &&
                   after.identities.at(where) == identity;
        };
        for (unsigned number = 1; !is_here(now) && number < 20; ++number) {
            now = path + std::to_string(number);
        }
        if (!is_here(now)) {
            return path + " is changed or lost";
        }
        if (now != path) {
            ++n_moved;
            if (entry.kind == Kind::directory || n_moved > 1 || before.tree.contains(now)) {
                return path + " was moved to " + now;
            }
        }
        old_paths.insert(now);
    }
    std::set<std::string> places; // of new files
    for (auto const& [path, entry] : after.tree) {
        if (entry.kind == Kind::directory || old_paths.contains(path)) {
            continue;
        }
        std::string const parent = Parent(path);
        // The new file of cliques beside it tells a directory of k from one that is called like it.
        auto const cliques = after.tree.find(Parent(parent) + "/cliques");
        bool const of_k = parent.ends_with("/k=3") && cliques != after.tree.end() &&
                          cliques->second.kind == Kind::file && !old_paths.contains(cliques->first);
        places.insert(of_k ? Parent(parent) : parent);
    }
    if (places.size() > 1) {
        return "there are new files in " + *places.begin() + " and in " + *places.rbegin();
    }
    for (std::string const& place : places) {
        auto const first = before.tree.lower_bound(place + "/");
        if (first != before.tree.end() && first->first.starts_with(place + "/")) {
            return "there are new files in " + place + ", which held something";
        }
    }
    return "";
}

// --- Running. ---

/// How long a run may take that should take milliseconds: one that hangs is a failure.
constexpr unsigned most_seconds = 120;

struct Outcome {
    std::string out;
    int status = 0; // as wait gives it
};

pid_t Start(std::string const& program, Texts args, std::string const& cwd, int out) {
    args.insert(args.begin(), "plexor");
    std::vector<char*> argv;
    for (std::string& arg : args) {
        argv.push_back(arg.data());
    }
    argv.push_back(nullptr);
    pid_t const child = ::fork();
    if (child == 0) {
        ::alarm(most_seconds);
        if (::chdir(cwd.c_str()) == 0 && ::dup2(out, 1) == 1 && ::dup2(out, 2) == 2) {
            ::execv(program.c_str(), argv.data());
        }
        ::_exit(127);
    }
    if (child < 0) {
        throw std::runtime_error("cannot start a process");
    }
    return child;
}

Outcome Run(std::string const& program, Texts const& args, std::string const& cwd) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("cannot make a pipe");
    }
    pid_t const child = Start(program, args, cwd, ends[1]);
    ::close(ends[1]);
    Outcome outcome;
    std::array<char, 4096> buffer{};
    for (ssize_t n = 0; (n = ::read(ends[0], buffer.data(), buffer.size())) > 0;) {
        outcome.out.append(buffer.data(), static_cast<std::size_t>(n));
    }
    ::close(ends[0]);
    ::waitpid(child, &outcome.status, 0);
    return outcome;
}

// --- Meddling. ---

std::string const victim = link_file.substr(0, link_file.find("/work")) + "/victim";

/// Somebody else's directory, with a file of every name that a run uses.
Tree Victim() {
    Tree tree;
    tree[victim] = {};
    tree[victim + "/k=3"] = {};
    for (char const* const file : {"input_params.txt", "graph", "cliques", "k=3/communities",
                                   "k=3/communities_links", "k=3/size_distribution"}) {
        tree[victim + "/" + file] = {Kind::file, std::string("foreign ") + file};
    }
    return tree;
}

/// So many changes last longer than a run.
constexpr unsigned most_turns = 3000;

/// Changes what is at and in "out" until it is killed. It never changes the victim itself.
[[noreturn]] void Meddle(std::string const& cwd, std::uint32_t seed) {
    Dice dice(seed);
    if (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::chdir(cwd.c_str()) != 0) {
        ::_exit(1);
    }
    for (unsigned turn = 0; turn < most_turns; ++turn) {
        int ignored = 0;
        switch (dice.Below(9)) {
        case 0:
        case 1:
            ignored = ::rename("out", ("gone" + std::to_string(turn)).c_str());
            break;
        case 2:
        case 3:
            ignored = ::symlink("../victim", "out");
            break;
        case 4:
            ignored = ::unlink("out");
            break;
        case 5:
            ignored = ::symlink("../../victim/k=3", "out/k=3");
            break;
        case 6:
            ignored = ::symlink("../../victim/cliques", "out/cliques");
            break;
        case 7:
            ignored = ::mkfifo("out/graph", 0600);
            break;
        default:
            ignored = ::mkdir("out", 0755);
            break;
        }
        static_cast<void>(ignored);
    }
    ::_exit(0);
}

// --- All runs. ---

class Runner {
public:
    Runner(std::string program, std::string directory)
        : program_(std::move(program)), directory_(std::move(directory)), box_(directory_) {
        // In case that one leads up out of the box all the same: not to what is not ours.
        for (int depth = 0; depth < 30; ++depth) {
            box_ += "/d";
        }
        std::filesystem::create_directories(box_);
        box_ += "/box";
    }

    /// False when something is wrong.
    bool Try(std::uint32_t seed) {
        Dice dice(seed);
        std::string const wrong = dice.Percent(10) ? Meddled(dice) : Undisturbed(dice);
        if (!wrong.empty()) {
            std::cout << "seed " << seed << ": " << wrong << "\nagain: random_trees --program "
                      << program_ << " --one " << seed << "\n";
        }
        Delete(box_);
        return wrong.empty();
    }

    /// False when the cases did not reach all that they are made for.
    bool Report() const {
        bool all = true;
        for (char const* const what :
             {"came to their end", "refused at once", "refused once made", "moved something aside",
              "could not make a directory", "could not list the directory",
              "with somebody else in between"}) {
            auto const found = reached_.find(what);
            std::cout << (found == reached_.end() ? 0 : found->second) << " " << what << "\n";
            all = all && found != reached_.end();
        }
        return all;
    }

private:
    std::string Undisturbed(Dice& dice) {
        Case drawn = Random_case(dice);
        std::string const token = "@HERE@";
        std::string const here = box_ + "/" + Parent(work);
        auto const fill_in = [&](std::string& text) {
            if (text.starts_with(token)) {
                text.replace(0, token.size(), here);
            }
        };
        std::ranges::for_each(drawn.args, fill_in);
        for (auto& [path, entry] : drawn.tree) {
            fill_in(entry.content);
        }
        Fill(box_, drawn.tree);
        Snapshot const before = Look(box_);
        Outcome const outcome = Run(program_, drawn.args, box_ + "/" + work);
        Snapshot const after = Look(box_);
        unsigned n_moved = 0;
        std::string wrong = What_is_wrong(before, after, n_moved);
        if (outcome.status != 0) {
            wrong += " the program ended with " + std::to_string(outcome.status);
        }
        auto const says = [&](std::string_view text) {
            return outcome.out.find(text) != std::string::npos;
        };
        // The banner stands at the end, too.
        bool const ended = outcome.out.find(" Plexor\n") != outcome.out.rfind(" Plexor\n");
        bool const refused = says("ERROR: the output directory already exists");
        constexpr std::size_t n_results = 12; // the directory of k, eleven files
        if (ended && !says("WARNING") && after.tree.size() < before.tree.size() + n_results) {
            wrong += " files are missing";
        }
        if (!wrong.empty()) {
            wrong += "\n" + outcome.out;
        }
        Count("came to their end", ended);
        Count("refused at once", refused && after.tree.size() == before.tree.size());
        Count("refused once made", refused && after.tree.size() > before.tree.size());
        Count("moved something aside", n_moved > 0);
        Count("could not make a directory", says("ERROR: Make_dir()"));
        Count("could not list the directory", says("List_dir()"));
        return wrong;
    }

    std::string Meddled(Dice& dice) {
        Tree tree = Victim();
        tree[link_file] = {Kind::file, "ann bob\nbob cat\ncat ann\ncat dan\n"};
        Fill(box_, tree);
        Snapshot const before = Look(box_ + "/" + victim);
        pid_t const meddler = ::fork();
        if (meddler == 0) {
            Meddle(box_ + "/" + work, dice.Below(1000000));
        }
        Outcome const outcome =
            Run(program_, {"-i", "net.txt", "-o", dice.Percent(70) ? "out" : "new/../out"},
                box_ + "/" + work);
        ::kill(meddler, SIGKILL);
        ::waitpid(meddler, nullptr, 0);
        Snapshot const after = Look(box_ + "/" + victim);
        Count("with somebody else in between", true);
        if (before.tree != after.tree || before.identities != after.identities) {
            return "the victim was changed\n" + outcome.out;
        }
        return outcome.status == 0 ? "" : "the program ended badly\n" + outcome.out;
    }

    void Count(std::string const& what, bool reached) {
        if (reached) {
            ++reached_[what];
        }
    }

    std::string program_;
    std::string directory_;
    std::string box_;
    std::map<std::string, unsigned> reached_;
};

int Main(Texts const& args) {
    std::string program;
    std::uint32_t seed = 1;
    std::uint32_t runs = 500;
    bool one = false;
    for (std::size_t i = 0; i + 1 < args.size(); i += 2) {
        if (args[i] == "--program") {
            program = std::filesystem::absolute(args[i + 1]);
        } else if (args[i] == "--runs") {
            runs = static_cast<std::uint32_t>(std::stoul(args[i + 1]));
        } else {
            one = args[i] == "--one";
            seed = static_cast<std::uint32_t>(std::stoul(args[i + 1]));
        }
    }
    std::string directory = std::filesystem::temp_directory_path() / "plexor_trees_XXXXXX";
    if (program.empty() || ::mkdtemp(directory.data()) == nullptr) {
        std::cout << "usage: random_trees --program PATH [--seed N] [--runs N] [--one SEED]\n";
        return 2;
    }
    bool good = true;
    {
        Runner runner(program, directory);
        for (std::uint32_t i = 0; good && i < (one ? 1 : runs); ++i) {
            good = runner.Try(seed + i);
        }
        good = good && (runner.Report() || one);
    }
    std::filesystem::remove_all(directory);
    std::cout << (good ? "passed\n" : "FAILED\n");
    return good ? 0 : 1;
}

} // namespace

} // namespace cpm::model

int main(int argc, char** argv) {
    try {
        return cpm::model::Main({argv + 1, argv + argc});
    } catch (std::exception const& error) {
        std::cout << error.what() << "\n";
        return 2;
    }
}
