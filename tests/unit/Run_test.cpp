// SPDX-License-Identifier: MIT
#include "Plexor_io/Run.h"

#include "Plexor_io/Console_progress.h"
#include "support/Captured_console.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <vector>

namespace cpm {
namespace {

using Kind = Run_outcome::Kind;

struct Runs : testing::Test {
    Temp_dir here;
    Captured_console console;
    Console_progress progress{console};
    Processor_clock clock;

    Run_outcome Run_with(std::vector<char const*> arguments) {
        arguments.insert(arguments.begin(), "plexor");
        return Run_command_line(static_cast<int>(arguments.size()), arguments.data(), clock,
                                progress, console);
    }
};

TEST_F(Runs, Come_to_their_end) {
    Write_file("net.txt", "a b\na c\nb c\n");
    Run_outcome const outcome = Run_with({"-i", "net.txt"});
    EXPECT_EQ(outcome.kind, Kind::completed);
    EXPECT_EQ(outcome.text, "");
    EXPECT_TRUE(outcome.not_written.empty());
    EXPECT_TRUE(Read_file("net.txt_files/k=3/communities").ends_with("\n0: a b c \n"));
}

TEST_F(Runs, Tell_help_from_a_command_line_that_cannot_be_used) {
    EXPECT_EQ(Run_with({"-i", "net.txt", "-h"}).kind, Kind::help);
    EXPECT_EQ(Run_with({}).kind, Kind::refused);
    EXPECT_EQ(Run_with({"-i", "net.txt", "-x"}).kind, Kind::refused);
}

TEST_F(Runs, End_with_the_text_of_an_error) {
    Run_outcome const outcome = Run_with({"-i", "missing"});
    EXPECT_EQ(outcome.kind, Kind::failed);
    EXPECT_EQ(outcome.text, "ERROR : File not found: 'missing' ");
    EXPECT_TRUE(console.Output().ends_with(outcome.text + "\n"));
}

TEST_F(Runs, Name_the_files_that_could_not_be_written) {
    Write_file("net.txt", "a b\na c\nb c\n");
    std::filesystem::create_directories("elsewhere");
    // A link in place of the directory of k is not followed.
    class Link_planted : public Console_progress {
    public:
        using Console_progress::Console_progress;
        void Search_done(std::uint32_t, bool) override {
            std::filesystem::create_directory_symlink("../elsewhere", "out/k=3");
        }
    };
    Link_planted planting(console);
    std::vector<char const*> const arguments{"plexor", "-i", "net.txt", "-o", "out"};
    Run_outcome const outcome = Run_command_line(5, arguments.data(), clock, planting, console);
    EXPECT_EQ(outcome.kind, Kind::completed);
    EXPECT_EQ(outcome.not_written.size(), 8U);
    EXPECT_EQ(outcome.not_written.front(), "out/k=3/communities");
    EXPECT_TRUE(std::filesystem::is_empty("elsewhere"));
}

TEST_F(Runs, Take_links_from_any_source) {
    Input_request request;
    request.input_file = "said.txt";
    request.out_dir = "out";
    bool asked_for_weights = true;
    Link_source const source = [&](bool weighted, Link_map& links) {
        asked_for_weights = weighted;
        for (char const* const name : {"a", "b", "c"}) {
            links.names.Add(name);
        }
        links.links.Append(std::vector<Node_pair>{{0, 1}, {0, 2}, {1, 2}});
    };
    EXPECT_EQ(cpm::Run(Run_settings(), request, source, progress, console).kind, Kind::completed);
    EXPECT_FALSE(asked_for_weights);
    EXPECT_TRUE(Read_file("out/k=3/communities").ends_with("\n0: a b c \n"));
    EXPECT_TRUE(
        Read_file("out/graph").starts_with("# The links from " + here.Path() + "/said.txt\n"));
}

TEST_F(Runs, Can_be_cancelled) {
    Write_file("net.txt", "a b\na c\nb c\n");
    class Stop : public Progress {
        void Node_started(std::uint32_t, std::uint32_t) override { throw Cancelled(); }
    };
    Stop stop;
    std::vector<char const*> const arguments{"plexor", "-i", "net.txt"};
    EXPECT_EQ(Run_command_line(3, arguments.data(), clock, stop, console).kind, Kind::cancelled);
    EXPECT_TRUE(std::filesystem::exists("net.txt_files/graph"));
    EXPECT_FALSE(std::filesystem::exists("net.txt_files/cliques"));
}

} // namespace
} // namespace cpm
