// SPDX-License-Identifier: MIT
#include "Plexor_io/Text_file.h"

#include "support/Captured_console.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>

namespace cpm {
namespace {

struct Text_files : testing::Test {
    Temp_dir here;
    Captured_console console;
};

TEST_F(Text_files, Hold_what_is_put) {
    {
        Text_file file("out", console);
        file.Put("a line\n");
        file.Put_number(12);
        file.Put('\n');
    }
    EXPECT_EQ(Read_file("out"), "a line\n12\n");
    EXPECT_EQ(console.Output(), "");
}

TEST_F(Text_files, Exist_even_when_nothing_is_put) {
    { Text_file const file("out", console); }
    EXPECT_EQ(Read_file("out"), "");
    EXPECT_EQ(console.Output(), "");
}

TEST_F(Text_files, Replace_an_older_file) {
    Write_file("out", "an older and longer text");
    {
        Text_file file("out", console);
        file.Put("new");
    }
    EXPECT_EQ(Read_file("out"), "new");
}

TEST_F(Text_files, May_be_larger_than_the_buffer) {
    std::string expected;
    {
        Text_file file("out", console);
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
    { Text_file const file("out", console); }
    ::umask(before);
    struct stat status {};
    ASSERT_EQ(::stat("out", &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0666U);
}

TEST_F(Text_files, A_path_that_cannot_be_opened_is_reported) {
    {
        Text_file file("missing/out", console);
        file.Put("text");
        EXPECT_EQ(console.Output(), "");
    }
    EXPECT_EQ(console.Output(), " WARNING: could not write 'missing/out'.\n");
}

TEST_F(Text_files, A_directory_in_the_way_is_reported) {
    std::filesystem::create_directory("out");
    { Text_file const file("out", console); }
    EXPECT_EQ(console.Output(), " WARNING: could not write 'out'.\n");
}

TEST_F(Text_files, A_full_disk_is_reported_once) {
    {
        Text_file file("/dev/full", console);
        for (int i = 0; i < 5; ++i) {
            file.Put(std::string(1000000, 'x'));
        }
    }
    EXPECT_EQ(console.Output(), " WARNING: could not write '/dev/full'.\n");
}

TEST_F(Text_files, A_disk_that_is_full_at_the_last_bytes_is_reported) {
    {
        Text_file file("/dev/full", console);
        file.Put("few");
    }
    EXPECT_EQ(console.Output(), " WARNING: could not write '/dev/full'.\n");
}

TEST_F(Text_files, Each_file_that_fails_is_reported) {
    { Text_file const file("missing/1", console); }
    { Text_file const file("2", console); }
    { Text_file const file("missing/3", console); }
    EXPECT_EQ(console.Output(), " WARNING: could not write 'missing/1'.\n"
                                " WARNING: could not write 'missing/3'.\n");
}

} // namespace
} // namespace cpm
