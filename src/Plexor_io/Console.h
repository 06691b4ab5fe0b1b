// SPDX-License-Identifier: MIT
// Console: standard output through one buffer. Long searches write a report a node; the buffer is
// passed on a few times a second, so that a person sees it live and a million reports cost nothing.
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
    ~Console() override;

    /// A whole message or report stands in the buffer: passes the buffer on if a person watching
    /// would otherwise have waited.
    void Message_done();
    void Flush();

    /// The text, an end of line, and Message_done().
    void Put_line(std::string_view text);

protected:
    void Make_room(std::size_t bytes) override;

private:
    int descriptor_;
    std::vector<char> buffer_;
    std::int64_t last_flush_;
};

} // namespace cpm

#endif
