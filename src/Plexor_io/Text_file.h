// SPDX-License-Identifier: MIT
// Text_file: the one buffered writer that every result file goes through.
#ifndef PLEXOR_TEXT_FILE_H
#define PLEXOR_TEXT_FILE_H

#include "Plexor_io/Console.h"
#include "Plexor_io/Text_sink.h"

#include <memory>
#include <string>

namespace cpm {

class Text_file : public Text_sink {
public:
    /// Opens the file for writing, emptied. A file that cannot be opened, or later not be written
    /// whole, does not stop the run: closing it says " WARNING: could not write '<path>'." on the
    /// console, once.
    Text_file(std::string path, Console& console);
    ~Text_file() override;

protected:
    void Make_room(std::size_t bytes) override;

private:
    void Flush();

    std::string path_;
    Console& console_;
    int descriptor_;
    bool failed_;
    std::unique_ptr<char[]> buffer_;
};

} // namespace cpm

#endif
