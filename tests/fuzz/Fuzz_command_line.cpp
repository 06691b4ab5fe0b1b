// SPDX-License-Identifier: MIT
// Fuzzer of the command line: the input is the arguments, each ended by a NUL. What is printed, the
// error, the output directory's name and the header text must be what the plain model says. Nothing
// is written.
//
// Bounds. Only the names of a link file that is there ("net") and of missing ones are let through
// to the reader: a device would be read for ever. The number of digits (-d) is the length of the
// directory's name, up to 4 GB, so runs with more than 400 digits are left out.
#include "Plain_input.h"
#include "Plexor_io/Header_text.h"
#include "Plexor_io/Process_input.h"
#include "Plexor_io/Usage.h"
#include "support/Captured_console.h"
#include "support/Temp_dir.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace cpm;
using Words = std::vector<std::string>;

constexpr char link_file_name[] = "net";
constexpr char link_file_text[] = "ann bob 0.5\nbob cat 1\nann cat 2\n";
constexpr double most_digits = 400;
constexpr std::size_t most_words = 40;

void Require(bool holds, char const* what, std::string const& right, std::string const& found) {
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n--- right\n%s\n--- found\n%s\n", what, right.c_str(),
                     found.c_str());
        std::abort();
    }
}

Words Split(char const* data, std::size_t size) {
    Words words;
    std::string word;
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == '\0') {
            words.push_back(word);
            word.clear();
        } else {
            word += data[i];
        }
    }
    if (!word.empty()) {
        words.push_back(word);
    }
    return words;
}

// The value that counts for a switch: the first one after its last occurrence.
std::optional<std::string> Value_of(Words const& words, std::string const& name) {
    for (std::size_t i = words.size(); i-- > 1;) {
        if (words[i] == name) {
            bool const has_value =
                i + 1 < words.size() && (words[i + 1].size() < 2 || words[i + 1].front() != '-');
            return has_value ? std::optional(words[i + 1]) : std::nullopt;
        }
    }
    return std::nullopt;
}

bool Within_bounds(Words const& words) {
    if (words.size() > most_words) {
        return false;
    }
    if (auto const file = Value_of(words, "-i")) {
        // "." and ".." are there, too: directories, which both sides refuse.
        bool const is_there = *file == link_file_name || *file == "." || *file == "..";
        if (!is_there && ::access(file->c_str(), F_OK) == 0) {
            return false;
        }
    }
    auto const digits = Value_of(words, "-d");
    return !digits || !(std::strtod(digits->c_str(), nullptr) > most_digits);
}

struct Found {
    std::string out;
    bool accepted = false;
    Run_settings settings;
};

Found Process(Words const& words) {
    std::vector<char const*> arguments;
    for (auto const& word : words) {
        arguments.push_back(word.c_str());
    }
    Found found;
    Captured_console console;
    Print_banner(console);
    console.Get().Put_line(" Reading input ...");
    Link_map links;
    try {
        Process_input(static_cast<int>(arguments.size()), arguments.data(), found.settings, links,
                      console);
        Extend_alap_szoveg(found.settings.header_text, found.settings);
        found.accepted = true;
    } catch (std::exception const& error) {
        console.Get().Put_line(error.what());
    }
    found.out = console.Output();
    return found;
}

Found Model(Words const& words, model::Job& job) {
    Captured_console console;
    Print_banner(console);
    std::string const banner = console.Output();
    std::ostringstream out;
    out << banner << " Reading input ...\n";
    model::Links links;
    Found found;
    try {
        job = model::Process_input(words, banner, links, out);
        found.accepted = true;
    } catch (std::exception const& error) {
        out << error.what() << "\n";
    }
    found.out = out.str();
    return found;
}

// A directory with the link file. The fuzzer's own paths may be relative, so a run enters it and
// leaves it again.
class Run_directory {
public:
    Run_directory() {
        Write_file(link_file_name, link_file_text);
        std::filesystem::current_path(before_);
    }
    void Enter() const { std::filesystem::current_path(directory_.Path()); }
    void Leave() const { std::filesystem::current_path(before_); }

private:
    std::filesystem::path before_ = std::filesystem::current_path();
    Temp_dir directory_;
};

void Compare(Words const& words) {
    Found const found = Process(words);
    model::Job job;
    Found const right = Model(words, job);
    Require(found.out == right.out, "what is printed", right.out, found.out);
    Require(found.accepted == right.accepted, right.accepted ? "accepted" : "refused", right.out,
            found.out);
    if (right.accepted) {
        Run_settings const& settings = found.settings;
        Require(settings.out_dir == job.directory, "the output directory's name", job.directory,
                settings.out_dir);
        Require(settings.header_text == job.header, "the header text", job.header,
                settings.header_text);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Run_directory const directory;
    Words const words = Split(reinterpret_cast<char const*>(data), size);
    directory.Enter();
    if (Within_bounds(words)) {
        Compare(words);
    }
    directory.Leave();
    return 0;
}
