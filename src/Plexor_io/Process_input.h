// SPDX-License-Identifier: MIT
// From the command line to the settings of the run and the links: the first stage of a run.
#ifndef PLEXOR_PROCESS_INPUT_H
#define PLEXOR_PROCESS_INPUT_H

#include "Plexor_io/Console.h"
#include "Plexor_io/Read_links.h"
#include "Plexor_io/Run_settings.h"
#include "Plexor_io/Switches.h"
#include "graph/Types.h"
#include "support/Errors.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cpm {

/// Switch to its values.
using Switch_params = gmap<std::string, std::vector<std::string>>;

/// What the switches ask for besides the settings of the run, and what is wrong with them.
struct Input_request {
    std::string input_file;
    Weight_interval weights;
    unsigned digits = 6; ///< decimals of the thresholds in the output directory's name
    std::optional<std::string> out_dir;
    bool help = false;
    bool undirected = false;
    bool error = false;
    std::string error_text; ///< whole lines
};

/// Ends a run that has printed help, or the usage for a command line that it cannot use. There is
/// nothing more to say: it has no text.
class Usage_shown : public Xerror_msg {
public:
    explicit Usage_shown(bool asked_for) : Xerror_msg(""), asked_for_(asked_for) {}
    /// Whether that is what the user wanted.
    bool Asked_for() const { return asked_for_; }

private:
    bool asked_for_;
};

/// Fills an empty link map, with the weights if it is told so.
using Link_source = std::function<void(bool weighted, Link_map& links)>;

/// Reads the command line, names the output directory and reads the links: Take_command_line(),
/// then Get_links() from the input file.
void Process_input(int argc, char const* const* argv, Run_settings& settings, Link_map& links,
                   Console& console);

/// Reads the command line. Throws Usage_shown when it asks for help or cannot be used.
void Take_command_line(int argc, char const* const* argv, Run_settings& settings,
                       Input_request& request, Console& console);

/// Reads the links and completes the settings, which have what the switches say, by what follows
/// from the request: the output directory's name, the word for the kind of run, the description.
/// Throws what the source throws.
void Get_links(Run_settings& settings, Input_request const& request, Link_source const& source,
               Link_map& links);

/// The links of the request's input file. Throws what the link reader throws. The request must
/// outlive its use.
Link_source Links_of_file(Input_request const& request);

/// Examines every switch. Fills the settings that come from switches and the request.
void Examin_params(Switch_params const& params, Run_settings& settings, Input_request& request);

/// True when every key is a known switch.
bool Check_keys(Switch_params const& params);

/// True when the switches go together; otherwise the error text gets a message for each rule that
/// they break.
bool Check_switches(Run_settings const& settings, Weight_interval const& weights, bool undirected,
                    std::string& error_text);

/// Reads the first value of a switch that is present, as a string, a double or an unsigned. When it
/// is missing or cannot be read, `value` stays, `error` is set and the error text gets a message.
template <class T>
void Get_param(T& value, std::string const& name, Switch_params const& params,
               std::string& error_text, bool& error);

} // namespace cpm

#endif
