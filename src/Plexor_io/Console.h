// SPDX-License-Identifier: MIT
// Console: standard output through one buffer. What a step says before it begins is passed on at
// once: nobody knows how long it will take. Long searches write one report per node; of a
// flood of these only a few each tenth of a second are, so that a million reports cost nothing.
#ifndef PLEXOR_CONSOLE_H
#define PLEXOR_CONSOLE_H

#include "Plexor_io/Text_sink.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace cpm {

class Console : public Text_sink {
public:
    /// Writes to the open file descriptor, which stays the caller's. A descriptor that takes no
    /// more text (closed, a reader gone) swallows the rest: the results on disk are what counts.
    explicit Console(int descriptor);
    /// Passes everything on to `text` instead, which must outlive it.
    explicit Console(Text_sink& text);
    ~Console() override;

    /// A whole message or report stands in the buffer: passes the buffer on, unless that has been
    /// done often in the last moments. Then Tick() does.
    void Message_done();
    /// Work goes on and nothing new is said: passes on what has been held back long enough.
    void Tick();
    void Flush();

    /// The text and an end of line, passed on at once.
    void Put_line(std::string_view text);

protected:
    void Make_room(std::size_t bytes) override;

private:
    int descriptor_ = -1;
    Text_sink* text_ = nullptr; ///< in place of the descriptor
    std::vector<char> buffer_;
    std::int64_t moment_began_ = 0;
    int n_in_moment_ = 0; ///< messages passed on since then
};

} // namespace cpm

#endif
