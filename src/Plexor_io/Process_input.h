// SPDX-License-Identifier: MIT
// From the command line to the settings of the run and the links: the first stage of a run.
#ifndef PLEXOR_PROCESS_INPUT_H
#define PLEXOR_PROCESS_INPUT_H

#include "Plexor_io/Console.h"
#include "Plexor_io/Read_links.h"
#include "Plexor_io/Run_settings.h"
#include "Plexor_io/Switches.h"
#include "graph/Types.h"

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

/// Reads the command line, names the output directory and reads the links. Prints help or the usage
/// and throws an Xerror_msg without a text when it is asked for help or cannot use the command
/// line; throws what the link reader throws.
void Process_input(int argc, char const* const* argv, Run_settings& settings, Link_map& links,
                   Console& console);

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
