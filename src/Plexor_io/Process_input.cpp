// SPDX-License-Identifier: MIT
#include "Plexor_io/Process_input.h"

#include "Plexor_io/Header_text.h"
#include "Plexor_io/My_convert_from_string.h"
#include "Plexor_io/Out_dir.h"
#include "Plexor_io/Usage.h"
#include "support/Errors.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace cpm {

namespace {

constexpr std::array<std::string_view, 11> known_switches{"-i", "-o", "-w", "-W", "-h", "-d",
                                                          "-t", "-D", "-I", "-k", "-U"};

std::string Unable_to_interpret(std::string const& value, std::string const& name) {
    return " Unable to interpret the value '" + value + "' for switch " + name + ".\n";
}

// Reads the value of a switch if the switch is present, which is what it returns: a switch without
// a readable value is present all the same.
template <class T>
bool Take_param(T& value, std::string const& name, Switch_params const& params,
                Input_request& request) {
    if (!params.contains(name)) {
        return false;
    }
    Get_param(value, name, params, request.error_text, request.error);
    return true;
}

void Take_out_dir(Switch_params const& params, Input_request& request) {
    std::string const name = "-o";
    std::string out_dir;
    if (!Take_param(out_dir, name, params, request)) {
        return;
    }
    // Without this, the files of the run would go to the root of the file system. With -I the name
    // is not empty in the end: it gets the ending of the intensity.
    std::vector<std::string> const& values = params[name];
    if (!values.empty() && out_dir.empty() && !params.contains("-I")) {
        request.error_text += Unable_to_interpret(out_dir, name);
        request.error = true;
    }
    request.out_dir = out_dir;
}

} // namespace

void Process_input(int argc, char const* const* argv, Run_settings& settings, Link_map& links,
                   Console& console) {
    Input_request request;
    Take_command_line(argc, argv, settings, request, console);
    Get_links(settings, request, Links_of_file(request), links);
}

void Take_command_line(int argc, char const* const* argv, Run_settings& settings,
                       Input_request& request, Console& console) {
    Switches const switches(argc, argv);
    settings = Run_settings();
    request = Input_request();
    Examin_params(Switch_params(switches.Params()), settings, request);
    if (request.help) {
        Print_detailed_usage(switches.Prog_name(), console);
        throw Usage_shown(true);
    }
    if (request.error) {
        Print_usage(switches.Prog_name(), request.error_text, console);
        throw Usage_shown(false);
    }
}

void Get_links(Run_settings& settings, Input_request const& request, Link_source const& source,
               Link_map& links) {
    settings.out_dir = Output_dir_name(request.input_file, request.weights, request.digits,
                                       request.out_dir, settings);
    settings.weighted =
        request.weights.lower_set || request.weights.upper_set || settings.intensity;
    source(settings.weighted, links);
    Generate_com_flag(settings.com_flag, settings.directed, settings.intensity);
    Generate_alap_szoveg(settings.header_text, request.input_file, request.weights);
}

Link_source Links_of_file(Input_request const& request) {
    return [&request](bool weighted, Link_map& links) {
        if (weighted) {
            Read_weighted_links(request.input_file, links, request.weights);
        } else {
            Read_unw_links(request.input_file, links);
        }
    };
}

void Examin_params(Switch_params const& params, Run_settings& settings, Input_request& request) {
    if (!Check_keys(params)) {
        request.error_text += "unknown parameter in parameter list! (Check_keys()).\n";
        request.error = true;
        return;
    }
    request.help = params.contains("-h");
    if (!Take_param(request.input_file, "-i", params, request)) {
        request.error_text += "You must specify an input file.\n";
        request.error = true;
    }
    request.weights.lower_set = Take_param(request.weights.lower, "-w", params, request);
    request.weights.upper_set = Take_param(request.weights.upper, "-W", params, request);
    Take_out_dir(params, request);
    Take_param(request.digits, "-d", params, request);
    settings.time_limit_set = Take_param(settings.time_limit, "-t", params, request);
    settings.directed = params.contains("-D");
    settings.intensity = Take_param(settings.intensity_threshold, "-I", params, request);
    settings.k_given = Take_param(settings.k, "-k", params, request);
    request.undirected = params.contains("-U");
    if (!Check_switches(settings, request.weights, request.undirected, request.error_text)) {
        request.error = true;
    }
}

bool Check_keys(Switch_params const& params) {
    return std::ranges::all_of(params, [](auto const& param) {
        return std::ranges::find(known_switches, param.first) != known_switches.end();
    });
}

bool Check_switches(Run_settings const& settings, Weight_interval const& weights, bool undirected,
                    std::string& error_text) {
    bool allowed = true;
    auto const refuse_when = [&](bool broken, std::string_view message) {
        if (broken) {
            error_text += message;
            allowed = false;
        }
    };
    refuse_when(settings.time_limit_set && !(settings.time_limit > 0.0),
                " The maximal allowed time per node must be positive.\n");
    refuse_when(weights.lower_set && weights.upper_set && weights.lower >= weights.upper,
                " The sepcified lower threshold is higher (or equal to) the upper threshold.\n");
    refuse_when(settings.directed && settings.intensity,
                " The search algorithm cannot apply the link weight \n"
                " intensity condition when looking for directed communities.\n");
    refuse_when(settings.intensity && settings.time_limit_set,
                " The search algorithm cannot apply the maximal time \n"
                " per node condition when a link weight intensity condition is set as well.\n");
    refuse_when(undirected && settings.directed,
                " The program cannot apply the dirrected and undirected\n"
                " search algorithm at the same time.\n");
    return allowed;
}

template <class T>
void Get_param(T& value, std::string const& name, Switch_params const& params,
               std::string& error_text, bool& error) {
    std::vector<std::string> const& values = params[name];
    if (values.empty()) {
        error_text += " No value is given for switch " + name + ".\n";
        error = true;
        return;
    }
    bool warning = false;
    if (!Convert_from_string(values.front(), value, warning)) {
        error_text += Unable_to_interpret(values.front(), name);
        error = true;
    }
}

template void Get_param(std::string&, std::string const&, Switch_params const&, std::string&,
                        bool&);
template void Get_param(double&, std::string const&, Switch_params const&, std::string&, bool&);
template void Get_param(unsigned&, std::string const&, Switch_params const&, std::string&, bool&);

} // namespace cpm
