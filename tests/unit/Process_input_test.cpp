// SPDX-License-Identifier: MIT
#include "Plexor_io/Process_input.h"

#include "Plexor_io/Link_file_errors.h"
#include "support/Captured_console.h"
#include "support/Errors.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace cpm {
namespace {

using Words = std::vector<std::string>;

constexpr char unknown_parameter[] = "unknown parameter in parameter list! (Check_keys()).\n";
constexpr char time_not_positive[] = " The maximal allowed time per node must be positive.\n";
constexpr char thresholds_crossed[] =
    " The sepcified lower threshold is higher (or equal to) the upper threshold.\n";
constexpr char directed_and_intensity[] =
    " The search algorithm cannot apply the link weight \n intensity condition when looking for "
    "directed communities.\n";
constexpr char intensity_and_time[] =
    " The search algorithm cannot apply the maximal time \n per node condition when a link weight "
    "intensity condition is set as well.\n";
constexpr char undirected_and_directed[] =
    " The program cannot apply the dirrected and undirected\n search algorithm at the same "
    "time.\n";

/// What the switches make of a command line that begins with the program's name.
struct Examined {
    explicit Examined(Words arguments) {
        arguments.insert(arguments.begin(), "plexor");
        Examin_params(Switch_params(Switches(arguments).Params()), settings, request);
    }
    Run_settings settings;
    Input_request request;
};

std::string Error_text(Words const& arguments) {
    Examined const examined(arguments);
    EXPECT_EQ(examined.request.error, !examined.request.error_text.empty());
    return examined.request.error_text;
}

// ---- The switches

TEST(Examining_switches, The_input_file_alone_leaves_all_else_at_its_default) {
    Examined const examined({"-i", "a.txt"});
    EXPECT_FALSE(examined.request.error);
    EXPECT_EQ(examined.request.error_text, "");
    EXPECT_EQ(examined.request.input_file, "a.txt");
    EXPECT_FALSE(examined.request.weights.lower_set);
    EXPECT_FALSE(examined.request.weights.upper_set);
    EXPECT_FALSE(examined.request.out_dir.has_value());
    EXPECT_EQ(examined.request.digits, 6U);
    EXPECT_FALSE(examined.request.help);
    EXPECT_FALSE(examined.request.undirected);
    EXPECT_FALSE(examined.settings.time_limit_set);
    EXPECT_FALSE(examined.settings.directed);
    EXPECT_FALSE(examined.settings.intensity);
    EXPECT_FALSE(examined.settings.k_given);
}

TEST(Examining_switches, Every_value_gets_to_its_place) {
    Examined const examined({"-i", "a.txt", "-o", "out", "-w", "0.25", "-W", "2", "-d", "3", "-t",
                             "2.75", "-k", "4", "-U"});
    EXPECT_EQ(examined.request.error_text, "");
    EXPECT_EQ(examined.request.out_dir, "out");
    EXPECT_TRUE(examined.request.weights.lower_set);
    EXPECT_EQ(examined.request.weights.lower, 0.25);
    EXPECT_TRUE(examined.request.weights.upper_set);
    EXPECT_EQ(examined.request.weights.upper, 2);
    EXPECT_EQ(examined.request.digits, 3U);
    EXPECT_TRUE(examined.settings.time_limit_set);
    EXPECT_EQ(examined.settings.time_limit, 2.75);
    EXPECT_TRUE(examined.settings.k_given);
    EXPECT_EQ(examined.settings.k, 4U);
    EXPECT_TRUE(examined.request.undirected);
}

TEST(Examining_switches, Directed_and_intensity) {
    EXPECT_TRUE(Examined({"-i", "a.txt", "-D"}).settings.directed);
    Examined const examined({"-i", "a.txt", "-I", "0.3"});
    EXPECT_TRUE(examined.settings.intensity);
    EXPECT_EQ(examined.settings.intensity_threshold, 0.3);
}

TEST(Examining_switches, Values_after_a_flag_are_ignored) {
    Examined const examined({"-i", "a.txt", "-D", "x", "y"});
    EXPECT_FALSE(examined.request.error);
    EXPECT_TRUE(examined.settings.directed);
}

TEST(Examining_switches, Only_the_first_value_counts) {
    Examined const examined({"-i", "a.txt", "extra", "-k", "4", "x"});
    EXPECT_FALSE(examined.request.error);
    EXPECT_EQ(examined.request.input_file, "a.txt");
    EXPECT_EQ(examined.settings.k, 4U);
}

TEST(Examining_switches, The_last_occurrence_counts) {
    EXPECT_EQ(Examined({"-i", "a.txt", "-i", "b.txt"}).request.input_file, "b.txt");
}

TEST(Examining_switches, Without_an_input_file) {
    EXPECT_EQ(Error_text({}), "You must specify an input file.\n");
}

TEST(Examining_switches, A_value_before_the_first_switch_is_an_unknown_parameter) {
    EXPECT_EQ(Error_text({"stray", "-i", "a.txt"}), unknown_parameter);
}

TEST(Examining_switches, Case_matters) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-H"}), unknown_parameter);
    EXPECT_EQ(Error_text({"-I", "0.3"}), "You must specify an input file.\n");
}

TEST(Examining_switches, Switches_are_not_abbreviations) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-k4"}), unknown_parameter);
    EXPECT_EQ(Error_text({"-i", "a.txt", "--help"}), unknown_parameter);
}

TEST(Examining_switches, An_unknown_switch_is_all_that_is_seen) {
    Examined const examined({"-x", "-h", "-t", "0"});
    EXPECT_TRUE(examined.request.error);
    EXPECT_FALSE(examined.request.help);
    EXPECT_EQ(examined.request.error_text, unknown_parameter);
}

TEST(Examining_switches, Help_is_seen_besides_errors) {
    Examined const examined({"-h", "-t", "0"});
    EXPECT_TRUE(examined.request.help);
    EXPECT_TRUE(examined.request.error);
}

TEST(Examining_switches, A_missing_value) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-k"}), " No value is given for switch -k.\n");
    EXPECT_EQ(Error_text({"-i"}), " No value is given for switch -i.\n");
}

TEST(Examining_switches, A_missing_value_counts_as_given) {
    Examined const examined({"-i", "-o", "-w", "-W", "-t", "-I", "-k"});
    EXPECT_TRUE(examined.request.out_dir.has_value());
    EXPECT_TRUE(examined.request.weights.lower_set);
    EXPECT_TRUE(examined.request.weights.upper_set);
    EXPECT_TRUE(examined.settings.time_limit_set);
    EXPECT_TRUE(examined.settings.intensity);
    EXPECT_TRUE(examined.settings.k_given);
}

TEST(Examining_switches, A_value_that_cannot_be_read) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-w", "abc"}),
              " Unable to interpret the value 'abc' for switch -w.\n");
    EXPECT_EQ(Error_text({"-i", "a.txt", "-W", ""}),
              " Unable to interpret the value '' for switch -W.\n");
    EXPECT_EQ(Error_text({"-i", "a.txt", "-k", "3 4"}),
              " Unable to interpret the value '3 4' for switch -k.\n");
}

TEST(Examining_switches, A_value_that_cannot_be_read_leaves_0) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-t", "abc"}),
              std::string(" Unable to interpret the value 'abc' for switch -t.\n") +
                  time_not_positive);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-t"}),
              std::string(" No value is given for switch -t.\n") + time_not_positive);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-w", "0.5", "-W", "abc"}),
              std::string(" Unable to interpret the value 'abc' for switch -W.\n") +
                  thresholds_crossed);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-w", "abc", "-W", "0.5"}),
              " Unable to interpret the value 'abc' for switch -w.\n");
}

TEST(Examining_switches, A_negative_number_is_an_unknown_parameter) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-t", "-1"}), unknown_parameter);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-w", "-5"}), unknown_parameter);
}

TEST(Examining_switches, A_negative_number_after_a_blank_is_a_value) {
    Examined const examined({"-i", "a.txt", "-w", " -5"});
    EXPECT_FALSE(examined.request.error);
    EXPECT_EQ(examined.request.weights.lower, -5);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-k", " -5"}),
              " Unable to interpret the value ' -5' for switch -k.\n");
}

TEST(Examining_switches, A_whole_number_is_rounded) {
    Examined const examined({"-i", "a.txt", "-k", "3.5", "-d", "2.2"});
    EXPECT_FALSE(examined.request.error);
    EXPECT_EQ(examined.settings.k, 4U);
    EXPECT_EQ(examined.request.digits, 2U);
}

TEST(Examining_switches, A_whole_number_that_does_not_fit_is_refused) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-k", "1e20"}),
              " Unable to interpret the value '1e20' for switch -k.\n");
    EXPECT_EQ(Error_text({"-i", "a.txt", "-d", "4294967296"}),
              " Unable to interpret the value '4294967296' for switch -d.\n");
    EXPECT_EQ(Examined({"-i", "a.txt", "-k", "4294967295"}).settings.k, 4294967295U);
}

TEST(Examining_switches, An_empty_output_directory_is_refused) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-o", ""}),
              " Unable to interpret the value '' for switch -o.\n");
    EXPECT_EQ(Error_text({"-i", "a.txt", "-o"}), " No value is given for switch -o.\n");
}

TEST(Examining_switches, With_an_intensity_an_empty_output_directory_gets_a_name) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-o", "", "-I", "0.3"}), "");
    EXPECT_EQ(Error_text({"-i", "a.txt", "-I", "0.3", "-o", ""}), "");
    EXPECT_EQ(Error_text({"-i", "a.txt", "-o", "", "-I"}), " No value is given for switch -I.\n");
    EXPECT_EQ(Error_text({"-i", "a.txt", "-o", "-I", "0.3"}),
              " No value is given for switch -o.\n");
}

TEST(Examining_switches, Errors_come_in_the_order_of_examination) {
    EXPECT_EQ(Error_text({"-k", "-I", "x", "-t", "y", "-d", "-1x0", "-o", "-W", "a", "-w"}),
              unknown_parameter);
    EXPECT_EQ(Error_text({"-k", "-I", "x", "-t", "y", "-d", "z", "-o", "-W", "a", "-w"}),
              std::string("You must specify an input file.\n"
                          " No value is given for switch -w.\n"
                          " Unable to interpret the value 'a' for switch -W.\n"
                          " No value is given for switch -o.\n"
                          " Unable to interpret the value 'z' for switch -d.\n"
                          " Unable to interpret the value 'y' for switch -t.\n"
                          " Unable to interpret the value 'x' for switch -I.\n"
                          " No value is given for switch -k.\n") +
                  time_not_positive + thresholds_crossed + intensity_and_time);
}

// ---- Which switches go together

TEST(Combining_switches, The_time_limit_must_be_positive) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-t", "0"}), time_not_positive);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-t", " -2"}), time_not_positive);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-t", "1e-300"}), "");
}

TEST(Combining_switches, The_lower_threshold_must_be_below_the_upper) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-w", "0.5", "-W", "0.5"}), thresholds_crossed);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-w", "0.6", "-W", "0.5"}), thresholds_crossed);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-w", "0.4", "-W", "0.5"}), "");
}

TEST(Combining_switches, Directed_excludes_intensity) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-D", "-I", "0.3"}), directed_and_intensity);
}

TEST(Combining_switches, Intensity_excludes_a_time_limit) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-t", "5", "-I", "0.3"}), intensity_and_time);
}

TEST(Combining_switches, Undirected_excludes_directed) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-D", "-U"}), undirected_and_directed);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-U"}), "");
}

TEST(Combining_switches, All_broken_rules_are_shown_in_order) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-D", "-I", "0.3", "-t", "5"}),
              std::string(directed_and_intensity) + intensity_and_time);
    EXPECT_EQ(Error_text({"-i", "a.txt", "-U", "-D", "-I", "0.3", "-t", "0", "-w", "2", "-W", "1"}),
              std::string(time_not_positive) + thresholds_crossed + directed_and_intensity +
                  intensity_and_time + undirected_and_directed);
}

TEST(Combining_switches, A_directed_run_may_have_a_time_limit) {
    EXPECT_EQ(Error_text({"-i", "a.txt", "-D", "-t", "5"}), "");
}

// ---- The stage as a whole

struct Processing_input : testing::Test {
    Processing_input() {
        Write_file("a.txt", "x y 0.5\ny z 0.25\nx y 0.25\n");
        Write_file("b.txt", "p q 1\n");
    }
    void Process(Words const& arguments) {
        std::vector<char const*> argv{"./plexor"};
        for (std::string const& argument : arguments) {
            argv.push_back(argument.c_str());
        }
        Process_input(static_cast<int>(argv.size()), argv.data(), settings, links, console);
    }
    /// Processes arguments that end the run, and gives what was printed.
    std::string Refused(Words const& arguments) {
        try {
            Process(arguments);
            ADD_FAILURE() << "not refused";
        } catch (Xerror_msg const& error) {
            EXPECT_STREQ(error.what(), "");
        }
        return console.Output();
    }
    /// "source target weight" of each link.
    Words Links() const {
        Words texts;
        for (std::size_t i = 0; i < links.links.size(); ++i) {
            texts.push_back(std::string(links.names[links.links[i].first]) + " " +
                            std::string(links.names[links.links[i].second]) + " " +
                            std::to_string(links.Weight(i)));
        }
        return texts;
    }

    Temp_dir here;
    Run_settings settings;
    Link_map links;
    Captured_console console;
};

constexpr char begin_of_error[] = "\n Error:\n";
constexpr char begin_of_usage[] = "\n Usage : ./plexor -i input_file \n";
constexpr char begin_of_help[] = " When using ./plexor you must specify at least the \n";

TEST_F(Processing_input, Without_thresholds_links_have_no_weights) {
    Process({"-i", "a.txt"});
    EXPECT_FALSE(settings.weighted);
    EXPECT_EQ(Links(), (Words{"x y 0.000000", "y z 0.000000"}));
    EXPECT_EQ(settings.out_dir, "a.txt_files");
    EXPECT_EQ(settings.com_flag, "");
    EXPECT_EQ(settings.header_text, " from " + here.Path() +
                                        "/a.txt\n"
                                        "# at no lower link weight threshold,\n"
                                        "# and at no upper link weight threshold.\n");
    EXPECT_EQ(console.Output(), "");
}

TEST_F(Processing_input, A_lower_threshold_makes_links_weighted) {
    Process({"-i", "a.txt", "-w", "0.3"});
    EXPECT_TRUE(settings.weighted);
    EXPECT_EQ(Links(), (Words{"x y 0.500000"}));
    EXPECT_EQ(settings.out_dir, "a.txt_files_0.300000_w");
}

TEST_F(Processing_input, An_upper_threshold_makes_links_weighted) {
    Process({"-i", "a.txt", "-W", "0.5", "-d", "1"});
    EXPECT_TRUE(settings.weighted);
    EXPECT_EQ(Links(), (Words{"x y 0.250000", "y z 0.250000"}));
    EXPECT_EQ(settings.out_dir, "a.txt_files_w_0.5");
}

TEST_F(Processing_input, An_intensity_threshold_makes_links_weighted) {
    Process({"-i", "a.txt", "-I", "0.3", "-d", "2", "-o", "out"});
    EXPECT_TRUE(settings.weighted);
    EXPECT_EQ(Links(), (Words{"x y 0.750000", "y z 0.250000"}));
    EXPECT_EQ(settings.out_dir, "out-w-th0.30");
    EXPECT_EQ(settings.com_flag, "intensity");
}

TEST_F(Processing_input, Directed) {
    Process({"-i", "a.txt", "-D", "-t", "5"});
    EXPECT_TRUE(settings.directed);
    EXPECT_EQ(settings.com_flag, "directed");
    EXPECT_EQ(settings.out_dir, "a.txt_files-d");
    EXPECT_EQ(settings.time_limit, 5);
}

TEST_F(Processing_input, Digits_change_the_directory_and_not_the_header) {
    Process({"-i", "a.txt", "-d", "2", "-w", "0.15"});
    EXPECT_EQ(settings.out_dir, "a.txt_files_0.15_w");
    EXPECT_NE(settings.header_text.find("threshold of 0.150000,"), std::string::npos);
}

TEST_F(Processing_input, The_last_input_file_is_read) {
    Process({"-i", "a.txt", "-i", "b.txt"});
    EXPECT_EQ(Links(), (Words{"p q 0.000000"}));
}

TEST_F(Processing_input, Nothing_is_left_of_older_settings) {
    settings.k_given = settings.directed = settings.intensity = settings.time_limit_set = true;
    settings.weighted = true;
    settings.k = 7;
    settings.time_limit = settings.intensity_threshold = 5;
    Process({"-i", "a.txt"});
    EXPECT_EQ(settings.k, 0U);
    EXPECT_EQ(settings.time_limit, 0);
    EXPECT_EQ(settings.intensity_threshold, 0);
    EXPECT_FALSE(settings.k_given || settings.directed || settings.intensity ||
                 settings.time_limit_set || settings.weighted);
}

TEST_F(Processing_input, A_missing_input_file_shows_the_usage) {
    std::string const output = Refused({});
    EXPECT_EQ(output.substr(0, 53), std::string(52, '_') + "\n");
    EXPECT_NE(output.find(std::string(begin_of_error) + "You must specify an input file.\n" +
                          begin_of_usage),
              std::string::npos);
}

TEST_F(Processing_input, Help_wins_over_a_usable_command_line) {
    EXPECT_EQ(Refused({"-i", "a.txt", "-h"}).find(begin_of_help), 0U);
    EXPECT_TRUE(links.links.empty());
}

TEST_F(Processing_input, Help_wins_over_errors) {
    EXPECT_EQ(Refused({"-h", "-t", "0"}).find(begin_of_help), 0U);
}

TEST_F(Processing_input, An_unknown_switch_wins_over_help) {
    std::string const output = Refused({"-i", "a.txt", "-x", "-h"});
    EXPECT_NE(output.find(std::string(begin_of_error) + unknown_parameter + begin_of_usage),
              std::string::npos);
    EXPECT_EQ(output.find(begin_of_help), std::string::npos);
}

TEST_F(Processing_input, A_refused_command_line_touches_no_file) {
    Refused({"-i", "a.txt", "-k"});
    EXPECT_FALSE(std::filesystem::exists("a.txt_files"));
    EXPECT_TRUE(links.links.empty());
}

TEST_F(Processing_input, No_program_name) {
    try {
        Process_input(0, nullptr, settings, links, console);
        FAIL();
    } catch (Xerror_msg const& error) {
        EXPECT_STREQ(error.what(), " program name missing in Switches...\n");
    }
}

TEST_F(Processing_input, A_file_that_is_not_there) {
    for (char const* const name : {"missing.txt", ""}) {
        try {
            Process({"-i", name});
            FAIL();
        } catch (Xep_file_not_found const& error) {
            EXPECT_EQ(error.what(), std::string("ERROR : File not found: '") + name + "' ");
        }
    }
}

// ---- Single values

Switch_params Params(Words arguments) {
    arguments.insert(arguments.begin(), "plexor");
    return Switch_params(Switches(arguments).Params());
}

TEST(Getting_a_value, Each_type_can_be_read) {
    Switch_params const params = Params({"-a", "1.5"});
    std::string error_text;
    bool error = false;
    std::string text;
    double number = 0;
    unsigned whole = 0;
    Get_param(text, "-a", params, error_text, error);
    Get_param(number, "-a", params, error_text, error);
    Get_param(whole, "-a", params, error_text, error);
    EXPECT_EQ(text, "1.5");
    EXPECT_EQ(number, 1.5);
    EXPECT_EQ(whole, 2U);
    EXPECT_FALSE(error);
    EXPECT_EQ(error_text, "");
}

TEST(Getting_a_value, What_cannot_be_read_changes_nothing) {
    Switch_params const params = Params({"-a", "x", "-b"});
    std::string error_text = "before\n";
    bool error = false;
    double number = 7;
    Get_param(number, "-a", params, error_text, error);
    Get_param(number, "-b", params, error_text, error);
    EXPECT_EQ(number, 7);
    EXPECT_TRUE(error);
    EXPECT_EQ(error_text, "before\n Unable to interpret the value 'x' for switch -a.\n"
                          " No value is given for switch -b.\n");
}

TEST(Getting_a_value, A_switch_that_is_not_there_is_a_fault_of_the_program) {
    std::string error_text;
    bool error = false;
    double number = 0;
    EXPECT_THROW(Get_param(number, "-a", Params({}), error_text, error), std::logic_error);
}

TEST(Knowing_switches, There_are_eleven) {
    EXPECT_TRUE(
        Check_keys(Params({"-i", "-o", "-w", "-W", "-h", "-d", "-t", "-D", "-I", "-k", "-U"})));
    EXPECT_TRUE(Check_keys(Params({})));
    for (char const* const name : {"-x", "-O", "-H", "-T", "-K", "-u", "--", "-ii", "stray"}) {
        EXPECT_FALSE(Check_keys(Params({name}))) << name;
    }
}

} // namespace
} // namespace cpm
