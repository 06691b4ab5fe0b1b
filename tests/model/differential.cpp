// SPDX-License-Identifier: MIT
// Runs the program and the plain model on the same random or given cases, one after the other in
// the same directory, and compares standard output, exit status and every file and directory byte
// for byte.
#include "Box.h"
#include "Plain_model.h"
#include "Random_case.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace cpm::model {

namespace {

constexpr char const* usage =
    "usage: differential --program PATH [--fake-clock-program PATH] [--seed N] [--cases N]\n"
    "                    [--coin-cases N] [--large-cases N] [--one SEED]\n"
    "                    [--network FILE [--switches LIST]...] [--threads N] [--keep DIR]\n"
    "  --program             the program under test\n"
    "  --fake-clock-program  the same program linked with Fake_clock.cpp; without it the cases with\n"
    "                        a time limit are left out\n"
    "  --seed                the first seed of each of the following three kinds (1)\n"
    "  --cases               how many small cases; 2000 when neither these nor others are asked for\n"
    "  --coin-cases          how many with a time limit that a coin lets strike: nine of ten on\n"
    "                        networks of 5 to 16 nodes, the others on 70 to 200\n"
    "  --large-cases         how many on networks of thousands of nodes\n"
    "  --one                 only the small case of this seed\n"
    "  --network             no random cases, but runs on this link file: one for each --switches\n"
    "  --switches            what stands after '-i FILE', all in one argument; nothing by default\n"
    "  --threads             how many threads the programs are told to have, where they listen (see\n"
    "                        Fake_clock_main.cpp); 0 for another number each case, 1 to 8\n"
    "  --keep                where failed cases are kept (a new directory)\n";

struct Options {
    std::string program;
    std::string fake_clock_program;
    std::uint32_t seed = 1;
    std::uint32_t cases = 0;
    std::uint32_t coin_cases = 0;
    std::uint32_t large_cases = 0;
    std::string network; // empty: random cases
    std::vector<std::string> switches;
    std::optional<std::uint32_t> threads;
    std::string keep;
};

/// What the program or the model made of a case; the tree by paths inside the box.
struct Result {
    std::string out;
    std::string errors;
    int status = 0; // as wait gives it
    Tree tree;
};

// --- Running the program. ---

/// A file without a name that holds what a child process prints.
class Capture {
public:
    Capture() : fd_(::memfd_create("capture", MFD_CLOEXEC)) {
        if (fd_ < 0) {
            throw std::runtime_error("cannot make a file in memory");
        }
    }
    Capture(Capture const&) = delete;
    Capture& operator=(Capture const&) = delete;
    ~Capture() { ::close(fd_); }

    int Get() const { return fd_; }

    std::string Text() const {
        std::string text(static_cast<std::size_t>(::lseek(fd_, 0, SEEK_END)), '\0');
        auto const size = ::pread(fd_, text.data(), text.size(), 0);
        if (size != static_cast<ssize_t>(text.size())) {
            throw std::runtime_error("cannot read back what the program printed");
        }
        return text;
    }

private:
    int fd_;
};

/// Bounds on a program that has gone astray: seconds of processor time, bytes of a file.
constexpr rlim_t most_seconds = 60;
constexpr rlim_t most_bytes = rlim_t{1} << 28;
/// Tells a program how many threads to have.
constexpr char const* threads_variable = "PLEXOR_TEST_THREADS";

std::string Text_of(Coin const& coin) {
    return std::to_string(coin.seed) + " " + std::to_string(coin.percent);
}

[[noreturn]] void Become(std::string const& program, std::vector<std::string> args,
                         std::string const& cwd, Clock const& clock, int out, int errors) {
    rlimit const time{most_seconds, most_seconds};
    rlimit const size{most_bytes, most_bytes};
    ::setrlimit(RLIMIT_CPU, &time);
    ::setrlimit(RLIMIT_FSIZE, &size);
    ::setenv("PLEXOR_FAKE_CLOCK_STEP", std::to_string(clock.step).c_str(), 1);
    if (clock.coin.percent > 0) {
        ::setenv("PLEXOR_FAKE_CLOCK_COIN", Text_of(clock.coin).c_str(), 1);
    }
    int const nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    std::vector<char*> argv;
    for (auto& arg : args) {
        argv.push_back(arg.data());
    }
    argv.push_back(nullptr);
    if (::chdir(cwd.c_str()) == 0 && ::dup2(nothing, 0) == 0 && ::dup2(out, 1) == 1 &&
        ::dup2(errors, 2) == 2) {
        ::execv(program.c_str(), argv.data());
    }
    ::_exit(127);
}

Result Run_program(std::string const& program, std::vector<std::string> const& args,
                   std::string const& box, Clock const& clock) {
    Capture const out;
    Capture const errors;
    std::string const cwd = box + "/" + work_directory;
    pid_t const child = ::fork();
    if (child < 0) {
        throw std::runtime_error("cannot start a process");
    }
    if (child == 0) {
        Become(program, args, cwd, clock, out.Get(), errors.Get());
    }
    Result result;
    if (::waitpid(child, &result.status, 0) != child) {
        throw std::runtime_error("cannot wait for the program");
    }
    result.out = out.Text();
    result.errors = errors.Text();
    result.tree = Look_into(box);
    return result;
}

/// The banner's wording is the program's own, so it is taken from the help text, whose last four
/// lines it is: a line of 52 underscores and three lines of text.
std::string Learn_banner(std::string const& program, std::string const& box) {
    Fill(box, {{work_directory, {}}});
    std::string const out = Run_program(program, {"plexor", "-h"}, box, {}).out;
    Delete(box);
    std::size_t end = 0;
    for (int line = 0; line < 4 && end != std::string::npos; ++line) {
        end = out.find('\n', end);
        end = end == std::string::npos ? end : end + 1;
    }
    std::string const banner = out.substr(0, end);
    if (!banner.starts_with(std::string(52, '_') + "\n") ||
        banner.find("Plexor") == std::string::npos) {
        throw std::runtime_error("'" + program +
                                 " -h' does not begin with a banner that names Plexor");
    }
    return banner;
}

// --- Running the model. ---

/// What stands in the box before the run.
void Refill(Case const& test, std::string const& box) {
    Delete(box);
    Fill(box, test.tree);
    Fill(box, {{work_directory, {}}});
}

std::vector<std::string> Args_in(Case const& test, std::string const& box) {
    std::vector<std::string> args = test.args;
    std::string const token = "@BOX@";
    for (auto& arg : args) {
        if (auto const at = arg.find(token); at != std::string::npos) {
            arg.replace(at, token.size(), box);
        }
    }
    return args;
}

Result Run_model_in(Case const& test, std::string const& box, std::string const& banner,
                    Reached& reached) {
    Result result;
    std::filesystem::current_path(box + "/" + work_directory);
    result.out = Run_model(Args_in(test, box), banner, test.clock, reached);
    std::filesystem::current_path("/"); // so that the box can be deleted
    result.tree = Look_into(box);
    return result;
}

// --- Showing what differs. ---

/// As cat -A shows it: line ends as "$", other control characters and high bytes in carets.
std::string Visible(std::string const& text) {
    std::string shown;
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        if (byte == '\n') {
            shown += "$\n";
            continue;
        }
        if (byte >= 128) {
            shown += "M-";
            byte = static_cast<unsigned char>(byte - 128);
        }
        if (byte < 32 || byte == 127) {
            shown += '^';
            byte ^= 64;
        }
        shown += static_cast<char>(byte);
    }
    return shown;
}

std::vector<std::string> Lines(std::string const& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line + (in.eof() ? "" : "\n"));
    }
    return lines;
}

std::string Excerpt(std::string const& model, std::string const& program) {
    auto const a = Lines(model);
    auto const b = Lines(program);
    std::size_t first = 0;
    while (first < a.size() && first < b.size() && a[first] == b[first]) {
        ++first;
    }
    std::ostringstream out;
    out << "  first difference in line " << first + 1 << "\n";
    auto const show = [&](char const* whose, std::vector<std::string> const& lines) {
        for (std::size_t i = first; i < std::min(lines.size(), first + 4); ++i) {
            std::string const line = Visible(lines[i].substr(0, 300));
            out << "  " << whose << ": " << line << (line.ends_with('\n') ? "" : "\n");
        }
        if (first >= lines.size()) {
            out << "  " << whose << ": (ends here)\n";
        }
    };
    if (first > 0) {
        out << "  both   : " << Visible(a[first - 1].substr(0, 300));
    }
    show("model  ", a);
    show("program", b);
    return out.str();
}

char const* Kind_name(Entry const& entry) {
    switch (entry.kind) {
    case Entry::Kind::directory:
        return "directory";
    case Entry::Kind::file:
        return "file";
    case Entry::Kind::pipe:
        return "pipe";
    case Entry::Kind::symlink:
        break;
    }
    return "symbolic link";
}

/// Empty when the program did what the model says.
std::string Difference(Result const& model, Result const& program) {
    std::ostringstream out;
    if (program.status != 0) {
        out << "exit status of the program, as wait gives it: " << program.status << "\n";
    }
    if (!program.errors.empty()) {
        out << "standard error of the program:\n"
            << Visible(program.errors.substr(0, 2000)) << "\n";
    }
    if (model.out != program.out) {
        out << "standard output\n" << Excerpt(model.out, program.out);
    }
    std::set<std::string> paths;
    for (auto const* tree : {&model.tree, &program.tree}) {
        for (auto const& [path, entry] : *tree) {
            paths.insert(path);
        }
    }
    for (auto const& path : paths) {
        auto const a = model.tree.find(path);
        auto const b = program.tree.find(path);
        if (a == model.tree.end()) {
            out << Kind_name(b->second) << " " << path << "\n  only the program has it\n";
        } else if (b == program.tree.end()) {
            out << Kind_name(a->second) << " " << path << "\n  only the model has it\n";
        } else if (a->second.kind != b->second.kind) {
            out << path << "\n  model: " << Kind_name(a->second)
                << ", program: " << Kind_name(b->second) << "\n";
        } else if (a->second != b->second) {
            out << Kind_name(a->second) << " " << path << "\n"
                << Excerpt(a->second.content, b->second.content);
        }
    }
    return out.str();
}

std::string Quoted(std::string const& text) {
    std::string quoted = "'";
    for (char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

// --- Cases one after the other. ---

class Runner {
public:
    Runner(Options options, std::string box)
        : options_(std::move(options)), box_(std::move(box)),
          banner_(Learn_banner(options_.program, box_)) {}

    void Go();
    bool Report() const;

private:
    struct Compared {
        std::string difference;
        Result model;
        Result program;
    };

    std::string const& Program_for(Case const& test) const {
        return test.timed ? options_.fake_clock_program : options_.program;
    }
    Compared Compare(Case const& test, Reached& reached) const;
    void Set_threads(std::uint32_t seed) const;
    void Try(Case const& test, std::string const& name, std::string const& again);
    void Shrink(Case& test) const;
    void Keep(Case test, std::string const& name, std::string const& again);

    Options options_;
    std::string box_;
    std::string banner_;
    std::map<std::string, unsigned> reached_;
    unsigned passed_ = 0;
    unsigned failed_ = 0;
    unsigned left_out_ = 0;
};

/// Only the first failures are shrunk and shown: the later ones tend to be the same again.
constexpr unsigned most_shown = 10;
/// Spent on making one failed network smaller: the links of all its runs taken together.
constexpr std::size_t most_shrinking_lines = 1'000'000;

Runner::Compared Runner::Compare(Case const& test, Reached& reached) const {
    Compared compared;
    Refill(test, box_);
    compared.model = Run_model_in(test, box_, banner_, reached);
    Refill(test, box_);
    compared.program = Run_program(Program_for(test), Args_in(test, box_), box_, test.clock);
    compared.difference = Difference(compared.model, compared.program);
    return compared;
}

/// Drops lines of the link file, many at first, for as long as the case still fails.
void Runner::Shrink(Case& test) const {
    if (test.link_file.empty()) {
        return;
    }
    Reached reached;
    std::size_t spent = 0;
    auto lines = Lines(test.tree.at(test.link_file).content);
    for (std::size_t step = std::max<std::size_t>(lines.size() / 2, 1); step > 0;) {
        bool smaller = false;
        for (std::size_t start = 0; start < lines.size() && spent < most_shrinking_lines;) {
            spent += lines.size();
            auto fewer = lines;
            auto const from = fewer.begin() + static_cast<std::ptrdiff_t>(start);
            fewer.erase(from,
                        from + static_cast<std::ptrdiff_t>(std::min(step, lines.size() - start)));
            Case smaller_test = test;
            std::string text;
            for (auto const& line : fewer) {
                text += line;
            }
            smaller_test.tree[test.link_file].content = text;
            if (Compare(smaller_test, reached).difference.empty()) {
                start += step;
            } else {
                test = smaller_test;
                lines = fewer;
                smaller = true;
            }
        }
        if (!smaller || spent >= most_shrinking_lines) {
            step /= 2;
        }
    }
}

void Runner::Keep(Case test, std::string const& name, std::string const& again) {
    Shrink(test);
    Reached reached;
    Compared const compared = Compare(test, reached);
    std::string const kept = options_.keep + "/red-" + name;
    Delete(kept);
    std::filesystem::create_directory(kept);
    Fill(kept + "/got", compared.program.tree);
    Fill(kept + "/expected", compared.model.tree);
    Refill(test, kept + "/input");
    std::ofstream(kept + "/got_stdout", std::ios::binary) << compared.program.out;
    std::ofstream(kept + "/expected_stdout", std::ios::binary) << compared.model.out;
    std::string command = "PLEXOR_FAKE_CLOCK_STEP=" + std::to_string(test.clock.step) + " ";
    if (test.clock.coin.percent > 0) {
        command += "PLEXOR_FAKE_CLOCK_COIN=" + Quoted(Text_of(test.clock.coin)) + " ";
    }
    if (char const* const threads = std::getenv(threads_variable); threads != nullptr) {
        command += std::string(threads_variable) + "=" + threads + " ";
    }
    command += Quoted(Program_for(test));
    auto const args = Args_in(test, box_);
    for (std::size_t i = 1; i < args.size(); ++i) {
        command += " " + Quoted(args[i]);
    }
    std::ofstream(kept + "/command") << command << "\n";
    std::cout << compared.difference << "kept in " << kept << ", there input/ run in input/"
              << work_directory << " with\n  " << command << "\nagain: differential --program "
              << Quoted(options_.program);
    if (!options_.fake_clock_program.empty()) {
        std::cout << " --fake-clock-program " << Quoted(options_.fake_clock_program);
    }
    if (options_.threads) {
        std::cout << " --threads " << *options_.threads;
    }
    std::cout << " " << again << "\n\n" << std::flush;
}

/// The case of this seed has the same number of threads whenever it is run.
void Runner::Set_threads(std::uint32_t seed) const {
    constexpr std::uint32_t most = 8;
    if (options_.threads) {
        std::uint32_t const n = *options_.threads > 0 ? *options_.threads : 1 + seed % most;
        ::setenv(threads_variable, std::to_string(n).c_str(), 1);
    }
}

/// `again`: the options by which this program repeats the case.
void Runner::Try(Case const& test, std::string const& name, std::string const& again) {
    if (Program_for(test).empty()) {
        ++left_out_;
        return;
    }
    Reached reached;
    Compared const compared = Compare(test, reached);
    if (compared.difference.empty()) {
        ++passed_;
        if (!options_.network.empty()) {
            std::cout << "passed " << again << ": " << compared.model.out.size()
                      << " bytes printed, " << compared.model.tree.size()
                      << " files and directories\n"
                      << std::flush;
        }
    } else {
        ++failed_;
        std::cout << "FAILED " << again << "\n" << std::flush;
        if (failed_ <= most_shown) {
            Keep(test, name, again);
        }
    }
    for (auto const& situation : reached) {
        ++reached_[situation];
    }
}

/// A run on the link file at `path`; between the switches stand blanks.
Case Given_case(std::filesystem::path const& path, std::string const& switches) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream links;
    if (!file || !(links << file.rdbuf())) {
        throw std::runtime_error("cannot read links from '" + path.string() + "'");
    }
    Case test;
    std::string const name = path.filename();
    test.link_file = std::string(work_directory) + "/" + name;
    test.tree[test.link_file] = {Entry::Kind::file, links.str()};
    test.args = {"plexor", "-i", name};
    std::istringstream in(switches);
    for (std::string arg; in >> arg;) {
        test.args.push_back(arg);
        test.timed = test.timed || arg == "-t";
    }
    return test;
}

void Runner::Go() {
    auto const try_random = [&](std::uint32_t n_cases, auto make_case, std::string const& kind,
                                std::string const& again) {
        for (std::uint32_t i = 0; i < n_cases; ++i) {
            std::uint32_t const seed = options_.seed + i;
            std::string const name = std::to_string(seed);
            Set_threads(seed);
            Try(make_case(seed), kind + name, again + name);
        }
    };
    try_random(options_.cases, Random_case, "", "--one ");
    try_random(options_.coin_cases, Coin_case, "coin-", "--coin-cases 1 --seed ");
    try_random(options_.large_cases, Large_case, "large-", "--large-cases 1 --seed ");
    for (std::size_t i = 0; i < options_.switches.size(); ++i) {
        std::string const& switches = options_.switches[i];
        Set_threads(static_cast<std::uint32_t>(i));
        Try(Given_case(options_.network, switches), "network-" + std::to_string(i + 1),
            "--network " + Quoted(options_.network) + " --switches " + Quoted(switches));
    }
}

bool Runner::Report() const {
    std::cout << "cases that met a rare situation:\n";
    for (auto const& [name, count] : reached_) {
        std::cout << "  " << name << ": " << count << "\n";
    }
    if (left_out_ > 0) {
        std::cout << left_out_ << " cases with a time limit left out: no --fake-clock-program\n";
    }
    std::cout << passed_ << " passed, " << failed_ << " failed\n";
    return failed_ == 0 && passed_ > 0;
}

Options Read_options(int argc, char** argv) {
    Options options;
    bool any_cases = false; // --cases, --coin-cases or --large-cases
    bool one = false;
    bool seed = false;
    for (int i = 1; i < argc; i += 2) {
        std::string const name = argv[i];
        if (i + 1 == argc) {
            throw std::invalid_argument(usage);
        }
        std::string const value = argv[i + 1];
        if (name == "--program") {
            options.program = std::filesystem::canonical(value);
        } else if (name == "--fake-clock-program") {
            options.fake_clock_program = std::filesystem::canonical(value);
        } else if (name == "--seed") {
            options.seed = static_cast<std::uint32_t>(std::stoul(value));
            seed = true;
        } else if (name == "--cases") {
            options.cases = static_cast<std::uint32_t>(std::stoul(value));
            any_cases = true;
        } else if (name == "--coin-cases") {
            options.coin_cases = static_cast<std::uint32_t>(std::stoul(value));
            any_cases = true;
        } else if (name == "--large-cases") {
            options.large_cases = static_cast<std::uint32_t>(std::stoul(value));
            any_cases = true;
        } else if (name == "--one") {
            options.seed = static_cast<std::uint32_t>(std::stoul(value));
            options.cases = 1;
            one = true;
        } else if (name == "--network") {
            options.network = std::filesystem::canonical(value);
        } else if (name == "--switches") {
            options.switches.push_back(value);
        } else if (name == "--threads") {
            options.threads = static_cast<std::uint32_t>(std::stoul(value));
        } else if (name == "--keep") {
            options.keep = value;
        } else {
            throw std::invalid_argument(usage);
        }
    }
    if (options.program.empty() || (options.network.empty() && !options.switches.empty())) {
        throw std::invalid_argument(usage);
    }
    bool const random = any_cases || one || seed;
    if ((one && (any_cases || seed)) || (random && !options.network.empty())) {
        throw std::invalid_argument("--one and --network go neither together nor with --seed, "
                                    "--cases, --coin-cases or --large-cases");
    }
    if (!any_cases && !one && options.network.empty()) {
        options.cases = 2000;
    }
    if (!options.network.empty() && options.switches.empty()) {
        options.switches.emplace_back(); // one run without switches
    }
    return options;
}

/// A new directory, by the path that getcwd gives inside it.
std::string Make_directory(std::filesystem::path const& parent) {
    std::string name = parent / "plexor-differential-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a directory '" + name + "'");
    }
    return std::filesystem::canonical(name);
}

/// Where the cases run: thousands of small files are soonest written and deleted in memory.
std::filesystem::path Place_for_boxes() {
    char const* const memory = "/dev/shm";
    bool const usable = std::getenv("TMPDIR") == nullptr && ::access(memory, W_OK | X_OK) == 0;
    return usable ? memory : std::filesystem::temp_directory_path();
}

} // namespace

} // namespace cpm::model

int main(int argc, char** argv) {
    using namespace cpm::model;
    try {
        Options options = Read_options(argc, argv);
        bool const keep_given = !options.keep.empty();
        if (keep_given) {
            std::filesystem::create_directories(options.keep);
            options.keep = std::filesystem::canonical(options.keep);
        } else {
            options.keep = Make_directory(std::filesystem::temp_directory_path());
        }
        std::string const place = Make_directory(Place_for_boxes());
        Runner runner(options, place + "/box");
        runner.Go();
        Delete(place);
        bool const good = runner.Report();
        if (good && !keep_given) {
            Delete(options.keep);
        }
        return good ? 0 : 1;
    } catch (std::exception const& error) {
        std::cerr << error.what() << "\n";
        return 2;
    }
}
