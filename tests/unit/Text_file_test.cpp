// SPDX-License-Identifier: MIT
#include "Plexor_io/Text_file.h"

#include "support/Captured_console.h"
#include "support/Temp_dir.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#define PLEXOR_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PLEXOR_ADDRESS_SANITIZER
#endif
#endif

namespace cpm {
namespace {

struct Text_files : testing::Test {
    Temp_dir here;
    Captured_console console;
    Result_place place{"."};
    Run_files files{place, "", "", console};

    New_file File(std::string const& name) { return place.Prepare().File(name); }
};

// While it lives, no file may grow beyond so many bytes.
class File_size_limit {
public:
    explicit File_size_limit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        rlimit const lower{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &lower);
    }
    File_size_limit(File_size_limit const&) = delete;
    File_size_limit& operator=(File_size_limit const&) = delete;
    ~File_size_limit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int);
};

TEST_F(Text_files, Hold_what_is_put) {
    {
        Text_file file(File("out"), files);
        file.Put("a line\n");
        file.Put_number(12);
        file.Put('\n');
    }
    EXPECT_EQ(Read_file("out"), "a line\n12\n");
    EXPECT_EQ(console.Output(), "");
}

TEST_F(Text_files, Exist_even_when_nothing_is_put) {
    { Text_file const file(File("out"), files); }
    EXPECT_EQ(Read_file("out"), "");
    EXPECT_EQ(console.Output(), "");
}

TEST_F(Text_files, Do_not_touch_an_older_file) {
    { Text_file const first(File("first"), files); }
    Write_file("out", "an older text");
    {
        Text_file file(File("out"), files);
        file.Put("new");
    }
    EXPECT_EQ(Read_file("out"), "an older text");
    EXPECT_EQ(console.Output(), " WARNING: could not write './out'.\n");
}

TEST_F(Text_files, Follow_no_link) {
    { Text_file const first(File("first"), files); }
    Write_file("foreign", "kept");
    std::filesystem::create_symlink("foreign", "out");
    std::filesystem::create_symlink("nowhere", "dangling");
    {
        Text_file out(File("out"), files);
        Text_file dangling(File("dangling"), files);
        out.Put("new");
        dangling.Put("new");
    }
    EXPECT_EQ(Read_file("foreign"), "kept");
    EXPECT_FALSE(std::filesystem::exists("nowhere"));
    EXPECT_EQ(console.Output(), " WARNING: could not write './dangling'.\n"
                                " WARNING: could not write './out'.\n");
}

TEST_F(Text_files, Do_not_wait_for_the_other_end_of_a_pipe) {
    { Text_file const first(File("first"), files); }
    ASSERT_EQ(::mkfifo("out", 0600), 0);
    { Text_file const file(File("out"), files); }
    EXPECT_EQ(console.Output(), " WARNING: could not write './out'.\n");
}

TEST_F(Text_files, May_be_larger_than_the_buffer) {
    std::string expected;
    {
        Text_file file(File("out"), files);
        for (int i = 0; i < 50; ++i) {
            std::string const part(9973, static_cast<char>('a' + i % 26));
            file.Put(part);
            file.Put_number(1234567);
            expected += part + "1234567";
        }
        std::string const whole(1000000, '!');
        file.Put(whole);
        expected += whole;
    }
    EXPECT_TRUE(Read_file("out") == expected);
}

TEST_F(Text_files, May_be_read_by_everybody) {
    mode_t const before = ::umask(0);
    { Text_file const file(File("out"), files); }
    ::umask(before);
    struct stat status {};
    ASSERT_EQ(::stat("out", &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0666U);
}

TEST_F(Text_files, A_path_that_cannot_be_opened_is_reported) {
    {
        Text_file file(File("missing/out"), files);
        file.Put("text");
        EXPECT_EQ(console.Output(), "");
    }
    EXPECT_EQ(console.Output(), " WARNING: could not write './missing/out'.\n");
}

TEST_F(Text_files, A_directory_in_the_way_is_reported) {
    { Text_file const first(File("first"), files); }
    std::filesystem::create_directory("out");
    { Text_file const file(File("out"), files); }
    EXPECT_EQ(console.Output(), " WARNING: could not write './out'.\n");
}

TEST_F(Text_files, A_full_disk_is_reported_once) {
    {
        File_size_limit const limit(5000); // much more than the console says
        Text_file file(File("out"), files);
        for (int i = 0; i < 5; ++i) {
            file.Put(std::string(1000000, 'x'));
        }
    }
    EXPECT_EQ(console.Output(), " WARNING: could not write './out'.\n");
}

TEST_F(Text_files, A_disk_that_is_full_at_the_last_bytes_is_reported) {
    {
        File_size_limit const limit(5000);
        Text_file file(File("out"), files);
        file.Put(std::string(6000, 'x')); // not enough to be written before the end
    }
    EXPECT_EQ(console.Output(), " WARNING: could not write './out'.\n");
    EXPECT_EQ(Read_file("out").size(), 5000U);
}

TEST_F(Text_files, Each_file_that_fails_is_reported) {
    { Text_file const file(File("missing/1"), files); }
    { Text_file const file(File("2"), files); }
    { Text_file const file(File("missing/3"), files); }
    EXPECT_EQ(console.Output(), " WARNING: could not write './missing/1'.\n"
                                " WARNING: could not write './missing/3'.\n");
}

TEST_F(Text_files, Are_not_made_without_memory_for_their_text) {
#ifdef PLEXOR_ADDRESS_SANITIZER
    GTEST_SKIP() << "under the address sanitizer memory cannot be limited";
#endif
    New_file const file = File("out");
    pid_t const child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // Nothing of the size of the buffer is left, only smaller pieces.
        rlimit const limit{rlim_t{1} << 28, rlim_t{1} << 28};
        ::setrlimit(RLIMIT_AS, &limit);
        constexpr std::size_t piece = std::size_t{1} << 17;
        while (new (std::nothrow) char[piece] != nullptr) {
        }
        try {
            Text_file const text(file, files);
        } catch (std::bad_alloc const&) {
            ::_exit(0);
        }
        ::_exit(1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "there was memory, or another error";
    EXPECT_FALSE(std::filesystem::exists("out"));
}

} // namespace
} // namespace cpm
