// SPDX-License-Identifier: MIT
// Fuzzer of whole runs: the first line of the input is switches, separated by single blanks, the
// rest is the link file "net". What is printed and every file that is left must be what the plain
// model says. The program's own main() is called, in a directory of its own.
//
// Bounds. The plain model takes exponential time, so files have 400 bytes at most; even as one
// clique these are searched in well under a second. -i is set here, and -o may not lead out of the
// directory. The digits (-d) are the length of a name. A time limit strikes at the first reading of
// the clock or never, as between these it matters how often the clock is read; the first
// character of the link file decides which.
#include "model/Box.h"
#include "model/Plain_model.h"
#include "support/Temp_dir.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

// main() of src/main.cpp, renamed.
int Plexor_main(int argc, char** argv);

namespace {

// Of the clock below, in microseconds. The model counts in the same way.
std::clock_t clock_step = 0;
std::clock_t clock_readings = 0;

} // namespace

// Takes the place of the C library's.
extern "C" std::clock_t clock() noexcept {
    return ++clock_readings * clock_step;
}

namespace {

using namespace cpm;
using namespace cpm::model;
using Words = std::vector<std::string>;

constexpr std::size_t most_bytes_of_links = 400;
constexpr std::size_t most_words = 24;
constexpr double most_digits = 40;
constexpr double longest_limit = 1e6;

struct Result {
    std::string out;
    Tree tree;
};

Words Split(std::string const& line) {
    Words words;
    std::istringstream in(line);
    for (std::string word; std::getline(in, word, ' ');) {
        words.push_back(word);
    }
    return words;
}

bool Is_switch(std::string const& word) {
    return word.size() > 1 && word.front() == '-';
}

// The number that a switch would get, wherever the switch is.
std::vector<double> Values_of(Words const& words, std::string const& name) {
    std::vector<double> values;
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        if (words[i] == name && !Is_switch(words[i + 1])) {
            values.push_back(std::strtod(words[i + 1].c_str(), nullptr));
        }
    }
    return values;
}

bool Within_bounds(Words const& words, std::string const& links) {
    if (words.size() > most_words || links.size() > most_bytes_of_links) {
        return false;
    }
    for (auto const& word : words) {
        bool const leads_out = word.find('/') != std::string::npos || word == "..";
        if (word == "-i" || leads_out || word.find('\0') != std::string::npos) {
            return false;
        }
    }
    for (double const digits : Values_of(words, "-d")) {
        if (digits > most_digits) {
            return false;
        }
    }
    for (double const limit : Values_of(words, "-t")) {
        if (!(limit < longest_limit)) {
            return false;
        }
    }
    return true;
}

// Microseconds between two readings of the clock.
long long Clock_step(Words const& words, std::string const& links) {
    auto const limits = Values_of(words, "-t");
    bool const strikes = !limits.empty() && !links.empty() && links.front() % 2 == 0;
    return strikes ? static_cast<long long>(limits.back() * 1e6) + 2 : 0;
}

// Standard output goes to a file in memory while main() runs.
std::string Call_main(Words args) {
    std::vector<char*> argv;
    for (auto& arg : args) {
        argv.push_back(arg.data());
    }
    argv.push_back(nullptr);
    int const file = ::memfd_create("out", MFD_CLOEXEC);
    int const before = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (file < 0 || before < 0 || ::dup2(file, STDOUT_FILENO) < 0) {
        std::abort();
    }
    int const status = Plexor_main(static_cast<int>(args.size()), argv.data());
    ::dup2(before, STDOUT_FILENO);
    ::close(before);
    std::string text(static_cast<std::size_t>(::lseek(file, 0, SEEK_END)), '\0');
    if (::pread(file, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()) ||
        status != 0) {
        std::abort();
    }
    ::close(file);
    return text;
}

// The wording of the banner is the program's own: a line of underscores and three lines of text, as
// the help begins.
std::string Learn_banner() {
    std::string const help = Call_main({"plexor", "-h"});
    std::size_t end = 0;
    for (int line = 0; line < 4; ++line) {
        end = help.find('\n', end) + 1;
    }
    return help.substr(0, end);
}

template <class Run> Result In_box(std::string const& box, std::string const& links, Run run) {
    Fill(box, {{"net", {Entry::Kind::file, links}}});
    std::filesystem::current_path(box);
    Result result;
    result.out = run();
    std::filesystem::current_path("..");
    result.tree = Look_into(box);
    Delete(box);
    return result;
}

void Require_same(Result const& right, Result const& found) {
    if (right.out != found.out) {
        std::fprintf(stderr, "printed\n--- right\n%s\n--- found\n%s\n", right.out.c_str(),
                     found.out.c_str());
        std::abort();
    }
    if (right.tree == found.tree) {
        return;
    }
    for (auto const* result : {&right, &found}) {
        std::fprintf(stderr, "--- %s\n", result == &right ? "right" : "found");
        auto const& other = result == &right ? found.tree : right.tree;
        for (auto const& [path, entry] : result->tree) {
            auto const same = other.find(path);
            if (same == other.end() || same->second != entry) {
                std::fprintf(stderr, "%s:\n%s\n", path.c_str(), entry.content.c_str());
            }
        }
    }
    std::abort();
}

// The fuzzer's own paths may be relative, so a run enters the directory and leaves it again.
class Run_directory {
public:
    Run_directory() : banner_(Learn_banner()) { std::filesystem::current_path(before_); }
    void Compare(Words args, std::string const& links) const {
        args.insert(args.begin(), {"plexor", "-i", "net"});
        long long const step = Clock_step(args, links);
        clock_step = step;
        clock_readings = 0;
        std::filesystem::current_path(directory_.Path());
        std::string const box = directory_.Path() + "/box"; // headers show it
        Result const found = In_box(box, links, [&] { return Call_main(args); });
        Reached reached;
        Result const right =
            In_box(box, links, [&] { return Run_model(args, banner_, {step}, reached); });
        std::filesystem::current_path(before_);
        Require_same(right, found);
    }

private:
    std::filesystem::path before_ = std::filesystem::current_path();
    Temp_dir directory_;
    std::string banner_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Run_directory const directory;
    std::string const input(reinterpret_cast<char const*>(data), size);
    std::size_t const end = std::min(input.find('\n'), input.size());
    Words const words = Split(input.substr(0, end));
    std::string const links = input.substr(std::min(end + 1, input.size()));
    if (Within_bounds(words, links)) {
        directory.Compare(words, links);
    }
    return 0;
}
