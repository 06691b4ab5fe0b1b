// SPDX-License-Identifier: MIT
#include "Plexor_io/Direktoriz.h"

#include "support/Errors.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace cpm {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

/// The text of the error that the step throws.
std::string Error_of(std::function<void()> const& step) {
    try {
        step();
    } catch (Xerror_msg const& error) {
        return error.what();
    }
    return "(no error)";
}

/// Standard input and output as strings while the object lives.
class Conversation {
public:
    explicit Conversation(std::string const& answers)
        : answers_(answers), in_(std::cin.rdbuf(answers_.rdbuf())),
          out_(std::cout.rdbuf(questions_.rdbuf())) {
        std::cin.clear();
    }
    Conversation(Conversation const&) = delete;
    Conversation& operator=(Conversation const&) = delete;
    ~Conversation() {
        std::cin.rdbuf(in_);
        std::cin.clear();
        std::cout.rdbuf(out_);
    }
    std::string Questions() const { return questions_.str(); }

private:
    std::istringstream answers_;
    std::ostringstream questions_;
    std::streambuf* in_;
    std::streambuf* out_;
};

struct Direktoriz : testing::Test {
    Temp_dir here;
};

// ---- What is at a path

using Looking_at_a_path = Direktoriz;

TEST_F(Looking_at_a_path, A_missing_path_is_not_there) {
    std::string kind = "before";
    bool empty = false;
    std::string message;
    EXPECT_FALSE(Is_there_such_path("missing", kind, empty, message));
    EXPECT_EQ(kind, "other");
    EXPECT_TRUE(empty);
    EXPECT_EQ(message, "A component of the path file_name does not exist.");
}

TEST_F(Looking_at_a_path, A_file_is_empty_when_its_size_is_0) {
    Write_file("empty", "");
    Write_file("full", "x");
    std::string kind;
    bool empty = false;
    std::string message = "untouched";
    EXPECT_TRUE(Is_there_such_path("empty", kind, empty, message));
    EXPECT_EQ(kind, "file");
    EXPECT_TRUE(empty);
    EXPECT_TRUE(Is_there_such_path("full", kind, empty, message));
    EXPECT_EQ(kind, "file");
    EXPECT_FALSE(empty);
    EXPECT_EQ(message, "untouched");
}

TEST_F(Looking_at_a_path, A_directory_is_known_empty_only_at_a_size_of_48) {
    fs::create_directory("dir");
    struct stat status {};
    ASSERT_EQ(::stat("dir", &status), 0);
    std::string kind;
    bool empty = false;
    std::string message;
    EXPECT_TRUE(Is_there_such_path("dir", kind, empty, message));
    EXPECT_EQ(kind, "dir");
    EXPECT_EQ(empty, status.st_size == 48);
}

TEST_F(Looking_at_a_path, Links_are_followed) {
    fs::create_directory("dir");
    fs::create_symlink("dir", "link");
    fs::create_symlink("nowhere", "dangling");
    std::string kind;
    EXPECT_TRUE(Is_there_such_path("link", kind));
    EXPECT_EQ(kind, "dir");
    EXPECT_FALSE(Is_there_such_path("dangling", kind));
}

TEST_F(Looking_at_a_path, Anything_else_is_other) {
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    std::string kind;
    EXPECT_TRUE(Is_there_such_path("pipe", kind));
    EXPECT_EQ(kind, "other");
}

TEST_F(Looking_at_a_path, A_path_through_a_file_is_not_there) {
    Write_file("file", "");
    std::string kind;
    bool empty = false;
    std::string message;
    EXPECT_FALSE(Is_there_such_path("file/x", kind, empty, message));
    EXPECT_EQ(message, "A component of the path is not a directory.");
    EXPECT_FALSE(Is_there_such_path("file/x"));
    EXPECT_TRUE(Is_there_such_path("file"));
}

using Looking_for_a_directory = Direktoriz;

TEST_F(Looking_for_a_directory, Only_a_directory_will_do) {
    fs::create_directory("dir");
    Write_file("file", "");
    bool empty = false;
    std::string message;
    EXPECT_TRUE(Is_there_such_dir("dir", empty, message));
    EXPECT_FALSE(Is_there_such_dir("file", empty, message));
    EXPECT_EQ(message, "The path file is a file.");
    EXPECT_FALSE(Is_there_such_dir("missing", empty, message));
    EXPECT_EQ(message, "A component of the path file_name does not exist.");
}

// ---- Listing

using Listing_a_directory = Direktoriz;

TEST_F(Listing_a_directory, Entries_come_in_the_order_of_their_bytes) {
    fs::create_directory("dir");
    for (char const* const name : {"b", "B", "a", "10", "9", ".hidden", "a.b", "\xc3\xa1"}) {
        Write_file(std::string("dir/") + name, "");
    }
    fs::create_directory("dir/sub");
    EXPECT_EQ(List_dir("dir"), (Dir_listing{{"dir/.hidden", "file"},
                                            {"dir/10", "file"},
                                            {"dir/9", "file"},
                                            {"dir/B", "file"},
                                            {"dir/a", "file"},
                                            {"dir/a.b", "file"},
                                            {"dir/b", "file"},
                                            {"dir/sub", "dir"},
                                            {"dir/\xc3\xa1", "file"}}));
}

TEST_F(Listing_a_directory, An_empty_directory_has_no_entries) {
    fs::create_directory("dir");
    EXPECT_EQ(List_dir("dir"), Dir_listing{});
}

TEST_F(Listing_a_directory, Only_a_directory_can_be_listed) {
    Write_file("file", "");
    EXPECT_EQ(Error_of([] { List_dir("file"); }),
              "ERROR: List_dir() called on file and\nThe path file is a file.");
    EXPECT_EQ(Error_of([] { List_dir("missing"); }),
              "ERROR: List_dir() called on missing and\n"
              "A component of the path file_name does not exist.");
}

TEST_F(Listing_a_directory, An_entry_that_cannot_be_looked_at_is_an_error) {
    fs::create_directory("dir");
    fs::create_symlink("nowhere", "dir/dangling");
    EXPECT_EQ(Error_of([] { List_dir("dir"); }),
              "ERROR: problem with dir/dangling in List_dir():\n"
              "A component of the path file_name does not exist.");
}

TEST_F(Listing_a_directory, A_directory_that_may_not_be_read_is_an_error) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "nothing is forbidden to the superuser";
    }
    fs::create_directory("dir");
    fs::permissions("dir", fs::perms::none);
    std::string const error = Error_of([] { List_dir("dir"); });
    fs::permissions("dir", fs::perms::owner_all);
    EXPECT_EQ(error, "ERROR: List_dir() -> scandir() called on dir and\nPermission denied.");
}

using Listing_a_tree = Direktoriz;

TEST_F(Listing_a_tree, The_contents_of_a_directory_come_before_it) {
    fs::create_directories("t/b/d");
    fs::create_directories("t/e");
    Write_file("t/a", "");
    Write_file("t/b/c", "");
    Write_file("t/b/d/x", "");
    Write_file("t/f", "");
    EXPECT_EQ(List_dir_rec("t"), (Dir_listing{{"t/a", "file"},
                                              {"t/b/c", "file"},
                                              {"t/b/d/x", "file"},
                                              {"t/b/d", "dir"},
                                              {"t/b", "dir"},
                                              {"t/e", "dir"},
                                              {"t/f", "file"}}));
}

TEST_F(Listing_a_tree, A_link_to_a_directory_is_not_part_of_the_tree) {
    fs::create_directories("t/b");
    Write_file("t/b/x", "");
    fs::create_symlink("..", "t/b/up");
    EXPECT_EQ(List_dir_rec("t"),
              (Dir_listing{{"t/b/up", "symlink"}, {"t/b/x", "file"}, {"t/b", "dir"}}));
}

// ---- Making

using Making_directories = Direktoriz;

TEST_F(Making_directories, Makes_every_missing_parent) {
    Make_dir("a/b/c");
    EXPECT_TRUE(fs::is_directory("a"));
    EXPECT_TRUE(fs::is_directory("a/b"));
    EXPECT_TRUE(fs::is_directory("a/b/c"));
}

TEST_F(Making_directories, Takes_absolute_paths_and_odd_slashes) {
    Make_dir(here.Path() + "/x/y");
    EXPECT_TRUE(fs::is_directory("x/y"));
    Make_dir("s//t/");
    EXPECT_TRUE(fs::is_directory("s/t"));
    Make_dir("./u/../v");
    EXPECT_TRUE(fs::is_directory("u"));
    EXPECT_TRUE(fs::is_directory("v"));
}

TEST_F(Making_directories, Existing_directories_are_left_alone) {
    Write_file("file", "");
    Make_dir(here.Path());
    Make_dir("/");
    Make_dir("");
    EXPECT_TRUE(fs::is_regular_file("file"));
}

TEST_F(Making_directories, Permissions_are_755) {
    mode_t const before = ::umask(0);
    Make_dir("a/b");
    ::umask(before);
    for (char const* const path : {"a", "a/b"}) {
        struct stat status {};
        ASSERT_EQ(::stat(path, &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0755U) << path;
    }
}

TEST_F(Making_directories, The_error_names_the_part_that_could_not_be_made) {
    Write_file("file", "");
    EXPECT_EQ(Error_of([] { Make_dir("file/b/c"); }),
              "ERROR: Make_dir() called with file/b and \n"
              "A component of the path is not a directory.");
    fs::create_symlink("nowhere", "dangling");
    EXPECT_EQ(Error_of([] { Make_dir("dangling/b"); }),
              "ERROR: Make_dir() called with dangling and \npathname already exists.");
    std::string const long_name(300, 'n');
    EXPECT_EQ(Error_of([&] { Make_dir("ok/" + long_name); }),
              "ERROR: Make_dir() called with ok/" + long_name + " and \npathname too long.");
}

// ---- Removing

using Removing_a_directory = Direktoriz;

TEST_F(Removing_a_directory, Removes_an_empty_directory) {
    fs::create_directory("dir");
    Remove_dir("dir");
    EXPECT_FALSE(fs::exists("dir"));
}

TEST_F(Removing_a_directory, Reports_what_is_in_the_way) {
    fs::create_directories("dir/sub");
    EXPECT_EQ(Error_of([] { Remove_dir("dir"); }),
              "ERROR: Remove_dir() called on 'dir' and\n"
              "newpath is a non-empty directory, i.e., contains entries other than . and .. .");
    EXPECT_EQ(Error_of([] { Remove_dir("missing"); }),
              "ERROR: Remove_dir() called on 'missing' and\n"
              "A component of the path file_name does not exist.");
}

using Unlinking_a_file = Direktoriz;

TEST_F(Unlinking_a_file, Removes_a_file) {
    Write_file("file", "x");
    Unlink_file("file");
    EXPECT_FALSE(fs::exists("file"));
}

TEST_F(Unlinking_a_file, Reports_what_is_in_the_way) {
    EXPECT_EQ(Error_of([] { Unlink_file("missing"); }),
              "ERROR: Unlink_file() called on 'missing'and \n"
              "A component of the path file_name does not exist.");
    fs::create_directory("dir");
    EXPECT_EQ(Error_of([] { Unlink_file("dir"); }),
              "ERROR: Unlink_file() called on 'dir'and \n"
              "newpath is an existing directory, but oldpath is not a directory.");
}

using Deleting_a_tree = Direktoriz;

TEST_F(Deleting_a_tree, Removes_the_whole_tree) {
    fs::create_directories("t/b/d");
    fs::create_directories("t/e");
    Write_file("t/a", "x");
    Write_file("t/b/d/x", "x");
    Delete_dir("t");
    EXPECT_FALSE(fs::exists("t"));
}

TEST_F(Deleting_a_tree, What_links_point_to_stays) {
    fs::create_directories("outside");
    Write_file("outside/precious", "x");
    fs::create_directories("t");
    fs::create_directory_symlink("../outside", "t/link");
    fs::create_symlink("../outside/precious", "t/file_link");
    Delete_dir("t");
    EXPECT_FALSE(fs::exists("t"));
    EXPECT_EQ(Read_file("outside/precious"), "x");
}

TEST_F(Deleting_a_tree, A_deep_tree_goes_too) {
    std::string path = "t";
    for (int depth = 0; depth < 100; ++depth) {
        path += "/d";
    }
    fs::create_directories(path);
    Delete_dir("t");
    EXPECT_FALSE(fs::exists("t"));
}

// ---- Renaming

using Renaming_a_path = Direktoriz;

TEST_F(Renaming_a_path, Renames) {
    Write_file("old", "x");
    Rename_the_path("old", "new");
    EXPECT_FALSE(fs::exists("old"));
    EXPECT_EQ(Read_file("new"), "x");
}

TEST_F(Renaming_a_path, Reports_what_is_in_the_way) {
    EXPECT_EQ(Error_of([] { Rename_the_path("old", "new"); }),
              "ERROR: Rename_the_path() called with old and new and \n"
              "A component of the path file_name does not exist.");
    fs::create_directory("dir");
    EXPECT_EQ(Error_of([] { Rename_the_path("dir", "dir/inside"); }),
              "ERROR: Rename_the_path() called with dir and dir/inside and \n"
              "an attempt was made to make a directory a subdirectory of itself.");
}

using Moving_a_path_aside = Direktoriz;

TEST_F(Moving_a_path_aside, The_first_free_number_is_taken) {
    Write_file("out", "x");
    Write_file("out1", "1");
    fs::create_directory("out2");
    Write_file("out4", "4");
    Rename_auto("out");
    EXPECT_FALSE(fs::exists("out"));
    EXPECT_EQ(Read_file("out1"), "1");
    EXPECT_EQ(Read_file("out3"), "x");
    EXPECT_EQ(Read_file("out4"), "4");
}

TEST_F(Moving_a_path_aside, A_link_to_nowhere_takes_its_number) {
    Write_file("out", "x");
    fs::create_symlink("nowhere", "out1");
    Rename_auto("out");
    EXPECT_EQ(fs::read_symlink("out1"), "nowhere");
    EXPECT_EQ(Read_file("out2"), "x");
}

TEST_F(Moving_a_path_aside, A_link_is_moved_itself) {
    Write_file("there", "x");
    fs::create_symlink("there", "out");
    Rename_auto("out");
    EXPECT_EQ(fs::read_symlink("out1"), "there");
    EXPECT_EQ(Read_file("there"), "x");
}

TEST_F(Moving_a_path_aside, Reports_what_is_in_the_way) {
    EXPECT_EQ(Error_of([] { Rename_auto("missing"); }),
              "ERROR: Rename_the_path() called with missing and missing1 and \n"
              "A component of the path file_name does not exist.");
}

using Renaming_to_a_path_that_may_be_taken = Direktoriz;

TEST_F(Renaming_to_a_path_that_may_be_taken, A_free_path_is_just_taken) {
    Write_file("old", "x");
    Rename_path("old", "new", "interactive");
    EXPECT_EQ(Read_file("new"), "x");
}

TEST_F(Renaming_to_a_path_that_may_be_taken, Keep_moves_aside_what_is_there) {
    Write_file("old", "x");
    Write_file("new", "y");
    Rename_path("old", "new", "keep");
    EXPECT_EQ(Read_file("new"), "x");
    EXPECT_EQ(Read_file("new1"), "y");
}

TEST_F(Renaming_to_a_path_that_may_be_taken, Clear_removes_what_is_there) {
    Write_file("old", "x");
    fs::create_directories("new/sub");
    Rename_path("old", "new", "clear");
    EXPECT_EQ(Read_file("new"), "x");
}

TEST_F(Renaming_to_a_path_that_may_be_taken, Interactive_asks_before_it_overwrites) {
    Write_file("old", "x");
    Write_file("new", "y");
    {
        Conversation const conversation("n");
        EXPECT_EQ(Error_of([] { Rename_path("old", "new", "interactive"); }),
                  "stopped interactively by user.");
        EXPECT_EQ(conversation.Questions(),
                  "Rename_path():\nThe new is already a file.\n"
                  "Do you wish to \n overwrite it (o),\n or stop (any other key)?\n");
    }
    EXPECT_EQ(Read_file("new"), "y");
    Conversation const conversation("o");
    Rename_path("old", "new", "interactive");
    EXPECT_EQ(Read_file("new"), "x");
}

TEST_F(Renaming_to_a_path_that_may_be_taken, An_unknown_flag_is_refused) {
    EXPECT_EQ(Error_of([] { Rename_path("old", "new", "Keep"); }),
              "ERROR: Rename_path() called with unknown flag 'Keep'");
}

// ---- Preparing

using Preparing_a_directory = Direktoriz;

TEST_F(Preparing_a_directory, A_missing_path_is_made_with_its_parents) {
    for (char const* const flag : {"keep", "clear", "interactive"}) {
        Dir_prepare(std::string(flag) + "/b/c", flag);
        EXPECT_TRUE(fs::is_directory(std::string(flag) + "/b/c")) << flag;
    }
}

TEST_F(Preparing_a_directory, Keep_leaves_a_directory_and_its_files_alone) {
    fs::create_directory("out");
    Write_file("out/file", "x");
    Dir_prepare("out", "keep");
    EXPECT_EQ(Read_file("out/file"), "x");
}

TEST_F(Preparing_a_directory, Keep_moves_a_file_aside) {
    Write_file("out", "x");
    Dir_prepare("out", "keep");
    EXPECT_TRUE(fs::is_directory("out"));
    EXPECT_EQ(Read_file("out1"), "x");
}

TEST_F(Preparing_a_directory, Keep_moves_a_file_aside_to_the_first_free_name) {
    Write_file("out", "x");
    Write_file("out1", "1");
    Dir_prepare("out", "keep");
    EXPECT_TRUE(fs::is_directory("out"));
    EXPECT_EQ(Read_file("out1"), "1");
    EXPECT_EQ(Read_file("out2"), "x");
}

TEST_F(Preparing_a_directory, Clear_empties_a_directory) {
    fs::create_directories("out/sub");
    Write_file("out/sub/file", "x");
    Dir_prepare("out", "clear");
    EXPECT_TRUE(fs::is_directory("out"));
    EXPECT_TRUE(fs::is_empty("out"));
}

TEST_F(Preparing_a_directory, Clear_replaces_a_file) {
    Write_file("out", "x");
    Dir_prepare("out", "clear");
    EXPECT_TRUE(fs::is_directory("out"));
    EXPECT_FALSE(fs::exists("out1"));
}

TEST_F(Preparing_a_directory, An_unknown_flag_is_refused) {
    EXPECT_EQ(Error_of([] { Dir_prepare("out", "Keep"); }),
              "ERROR: Dir_prepare() called with unknown flag 'Keep'");
    EXPECT_EQ(Error_of([] { Dir_prepare("out", ""); }),
              "ERROR: Dir_prepare() called with unknown flag ''");
    EXPECT_FALSE(fs::exists("out"));
}

using Asking_what_to_do = Direktoriz;

constexpr char directory_question[] =
    "Dir_prepare():\nThe out is already a dir, and it is not empty.\n"
    "Do you wish to \n keep the contents (k),\n clear it (c),\n or stop (any other key)?\n";
constexpr char file_question[] =
    "Dir_prepare():\nThe out is already a file, and it is empty.\n"
    "Do you wish to \n overwrite it (o),\n rename it (r),\n or stop (any other key)?\n";

TEST_F(Asking_what_to_do, A_directory_can_be_kept) {
    fs::create_directory("out");
    Write_file("out/file", "x");
    Conversation const conversation("k");
    Dir_prepare_interact("out", "dir", false);
    EXPECT_EQ(conversation.Questions(), directory_question);
    EXPECT_EQ(Read_file("out/file"), "x");
}

TEST_F(Asking_what_to_do, A_directory_can_be_cleared) {
    fs::create_directory("out");
    Write_file("out/file", "x");
    Conversation const conversation("c");
    Dir_prepare_interact("out", "dir", false);
    EXPECT_TRUE(fs::is_directory("out"));
    EXPECT_TRUE(fs::is_empty("out"));
}

TEST_F(Asking_what_to_do, Any_other_key_stops) {
    fs::create_directory("out");
    Write_file("out/file", "x");
    for (char const* const answer : {"x", "K", ""}) {
        Conversation const conversation(answer);
        EXPECT_EQ(Error_of([] { Dir_prepare_interact("out", "dir", false); }),
                  "stopped interactively by user.");
    }
    EXPECT_EQ(Read_file("out/file"), "x");
}

TEST_F(Asking_what_to_do, A_file_can_be_overwritten) {
    Write_file("out", "");
    Conversation const conversation("o");
    Dir_prepare("out", "interactive");
    EXPECT_EQ(conversation.Questions(), file_question);
    EXPECT_TRUE(fs::is_directory("out"));
}

TEST_F(Asking_what_to_do, A_file_can_be_renamed) {
    Write_file("out", "");
    Conversation const conversation("r\nmoved here\n");
    Dir_prepare("out", "interactive");
    EXPECT_EQ(conversation.Questions(),
              std::string(file_question) + "Please type in the new path:\n");
    EXPECT_TRUE(fs::is_directory("out"));
    EXPECT_TRUE(fs::is_regular_file("moved here"));
}

TEST_F(Asking_what_to_do, Any_other_key_leaves_a_file_alone) {
    Write_file("out", "");
    Conversation const conversation("k");
    EXPECT_EQ(Error_of([] { Dir_prepare("out", "interactive"); }),
              "stopped interactively by user.");
    EXPECT_TRUE(fs::is_regular_file("out"));
}

} // namespace
} // namespace cpm
