// SPDX-License-Identifier: MIT
#include "Plexor_io/Console.h"

#include "support/Captured_console.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace cpm {
namespace {

/// Both ends of a pipe, closed at the end unless they are closed before.
struct Pipe {
    explicit Pipe(int flags) { EXPECT_EQ(::pipe2(ends.data(), flags), 0); }
    Pipe(Pipe const&) = delete;
    Pipe& operator=(Pipe const&) = delete;
    ~Pipe() {
        Close(0);
        Close(1);
    }
    int Reader() const { return ends[0]; }
    int Writer() const { return ends[1]; }
    void Close(std::size_t end) {
        if (ends[end] >= 0) {
            ::close(ends[end]);
            ends[end] = -1;
        }
    }
    /// Reads until there is no more writer.
    std::string Read_all() const {
        std::string text;
        std::array<char, 1000> part{};
        ssize_t got = 0;
        while ((got = ::read(Reader(), part.data(), part.size())) > 0) {
            text.append(part.data(), static_cast<std::size_t>(got));
        }
        return text;
    }
    std::array<int, 2> ends{-1, -1};
};

TEST(Console_text, Arrives_in_order) {
    Captured_console console;
    console.Get().Put("a");
    console.Get().Put_line("b");
    console.Get().Put_number(12);
    console.Get().Message_done();
    console.Get().Put("c");
    EXPECT_EQ(console.Output(), "ab\n12c");
    console.Get().Put("d");
    EXPECT_EQ(console.Output(), "ab\n12cd");
}

TEST(Console_text, Is_held_back_while_a_message_is_under_way) {
    Pipe pipe(O_NONBLOCK);
    Console console(pipe.Writer());
    console.Put("half a line");
    EXPECT_EQ(pipe.Read_all(), "");
    console.Flush();
    EXPECT_EQ(pipe.Read_all(), "half a line");
}

TEST(Console_text, The_first_message_is_shown_at_once) {
    Pipe pipe(O_NONBLOCK);
    Console console(pipe.Writer());
    console.Put_line("here");
    EXPECT_EQ(pipe.Read_all(), "here\n");
}

TEST(Console_text, The_rest_is_passed_on_at_the_end) {
    Pipe pipe(0);
    {
        Console console(pipe.Writer());
        console.Put_line("one");
        console.Put_line("two");
        console.Put("three");
    }
    pipe.Close(1);
    EXPECT_EQ(pipe.Read_all(), "one\ntwo\nthree");
}

TEST(Console_text, May_be_larger_than_the_buffer) {
    Captured_console console;
    std::string expected;
    for (int i = 0; i < 30; ++i) {
        std::string const part(9973, static_cast<char>('a' + i % 26));
        console.Get().Put_line(part);
        expected += part + "\n";
    }
    std::string const whole(300000, '!');
    console.Get().Put(whole);
    EXPECT_EQ(console.Output(), expected + whole);
}

TEST(Console_text, A_slow_reader_gets_everything) {
    Pipe pipe(0);
    // What another program that shares the terminal or pipe may have done to it.
    ASSERT_EQ(::fcntl(pipe.Writer(), F_SETFL, O_NONBLOCK), 0);
    std::string received;
    std::thread reader([&] { received = pipe.Read_all(); });
    std::string const text(3000000, 'x');
    {
        Console console(pipe.Writer());
        console.Put(text);
    }
    pipe.Close(1);
    reader.join();
    EXPECT_EQ(received.size(), text.size());
    EXPECT_TRUE(received == text);
}

TEST(Console_text, Is_swallowed_by_a_closed_descriptor) {
    Console console(-1);
    console.Put_line("nobody reads this");
    console.Flush();
}

TEST(Console_text, Is_swallowed_when_the_reader_is_gone) {
    auto* const before = std::signal(SIGPIPE, SIG_IGN);
    {
        Pipe pipe(0);
        pipe.Close(0);
        Console console(pipe.Writer());
        console.Put(std::string(200000, 'x'));
    }
    std::signal(SIGPIPE, before);
}

} // namespace
} // namespace cpm
