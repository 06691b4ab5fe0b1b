// SPDX-License-Identifier: MIT
// The module plexor._engine: what Access.h and the headers around it offer, for Python. Arrays go
// in and out without a copy where their types fit. The interpreter is free while the engine works;
// a watcher takes it back for a moment, to look for Ctrl-C and to move a bar.
#include "Edge_list_reader.h"
#include "Links.h"
#include "Run.h"
#include "Search.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <chrono>

namespace py = pybind11;
using namespace plexor_access;

namespace {

template <class T> using In = py::array_t<T, py::array::c_style | py::array::forcecast>;

template <class T> std::span<T const> View(In<T> const& array) {
    return {array.data(), static_cast<std::size_t>(array.size())};
}

// The array itself; its memory lives as long as the NumPy array does. Nobody may write into it:
// several arrays of Python can be views of one.
template <class T> py::array_t<T> Out(Array<T> const& array) {
    auto const owner = new std::shared_ptr<void const>(array.owner);
    py::capsule const capsule(
        owner, [](void* kept) { delete static_cast<std::shared_ptr<void const>*>(kept); });
    py::array_t<T> out(static_cast<py::ssize_t>(array.size), array.data, capsule);
    out.attr("setflags")(py::arg("write") = false);
    return out;
}

py::tuple Out(Lists const& lists) {
    return py::make_tuple(Out(lists.members), Out(lists.offsets));
}

py::tuple Out(Counts const& counts) {
    return py::make_tuple(Out(counts.values), Out(counts.counts));
}

// Looks for signals, and passes progress on to functions of (done, total), which may be None.
class Python_watcher : public Watcher {
public:
    explicit Python_watcher(py::object progress, py::object levels = py::none())
        : progress_(std::move(progress)), levels_(std::move(levels)) {}

    void Tick() override {
        auto const now = Steady::now();
        if (now - last_tick_ < interval) {
            return;
        }
        last_tick_ = now;
        py::gil_scoped_acquire const hold;
        if (PyErr_CheckSignals() != 0) {
            throw py::error_already_set();
        }
        // A level may take long: whoever shows the time wants to hear again.
        if (level_total_ != 0 && now - last_shown_ >= still) {
            last_shown_ = now;
            levels_(level_done_, level_total_);
        }
    }
    void Searching(std::uint64_t to_do, std::uint64_t total) override {
        Tick();
        if (progress_.is_none() || last_tick_ == last_shown_) {
            return;
        }
        last_shown_ = last_tick_;
        py::gil_scoped_acquire const hold;
        progress_(total - to_do, total);
    }
    void Level(std::uint64_t done, std::uint64_t total) override {
        Tick();
        if (levels_.is_none()) {
            return;
        }
        level_done_ = done;
        level_total_ = total;
        last_shown_ = Steady::now();
        py::gil_scoped_acquire const hold;
        levels_(done, total);
    }

private:
    using Steady = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds interval{20};
    static constexpr std::chrono::milliseconds still{500};

    py::object progress_;
    py::object levels_;
    std::uint64_t level_done_ = 0;
    std::uint64_t level_total_ = 0; ///< 0: no level has begun, or nobody is told
    Steady::time_point last_tick_{};
    Steady::time_point last_shown_{};
};

// The exceptions are those of plexor.errors.
void Throw_as_Python(Engine_error const& error) {
    py::module_ const errors = py::module_::import("plexor.errors");
    char const* name = "PlexorError";
    switch (error.What_kind()) {
    case Engine_error::Kind::refused:
        break;
    case Engine_error::Kind::file_not_found:
        name = "LinkFileNotFoundError";
        break;
    case Engine_error::Kind::unreadable_file:
    case Engine_error::Kind::wrong_line:
        name = "LinkFileError";
        break;
    }
    // A line of a link file may hold any bytes.
    py::object const text = py::reinterpret_steal<py::object>(PyUnicode_DecodeUTF8(
        error.what(), static_cast<py::ssize_t>(std::char_traits<char>::length(error.what())),
        "surrogateescape"));
    PyErr_SetObject(errors.attr(name).ptr(), text.ptr());
}

std::unique_ptr<Search> Make_search(In<Number> const& source, In<Number> const& target,
                                    std::optional<In<double>> const& weight, std::size_t n_nodes,
                                    bool directed, std::optional<double> lower,
                                    std::optional<double> upper, std::optional<double> intensity,
                                    std::optional<double> time_limit, unsigned threads,
                                    py::object progress) {
    Links_in const links{View(source), View(target),
                         weight ? View(*weight) : std::span<double const>(), n_nodes};
    Question const question{directed, lower, upper, intensity, time_limit};
    Python_watcher watcher(std::move(progress));
    py::gil_scoped_release const release;
    return std::make_unique<Search>(links, question, threads, watcher);
}

Level At(Search const& search, Number k) {
    Python_watcher watcher{py::none()};
    py::gil_scoped_release const release;
    return search.At(k, watcher);
}

std::unique_ptr<Levels_ahead> Ahead(Search const& search, std::vector<Number> ks,
                                    unsigned threads) {
    Python_watcher watcher{py::none()};
    py::gil_scoped_release const release;
    return std::make_unique<Levels_ahead>(search, std::move(ks), threads, watcher);
}

Level Next(Levels_ahead& levels) {
    Python_watcher watcher{py::none()};
    py::gil_scoped_release const release;
    return levels.Next(watcher);
}

py::tuple Links_of(Level const& level) {
    Python_watcher watcher{py::none()};
    Level_links links;
    {
        py::gil_scoped_release const release;
        links = level.Links(watcher);
    }
    return py::make_tuple(Out(links.source), Out(links.target), Out(links.offsets));
}

py::tuple Graph_of(Level const& level) {
    Python_watcher watcher{py::none()};
    Overlaps overlaps;
    {
        py::gil_scoped_release const release;
        overlaps = level.Graph(watcher);
    }
    return py::make_tuple(Out(overlaps.a), Out(overlaps.b), Out(overlaps.shared));
}

py::dict Count(Level const& level, std::string const& part) {
    Distributions distributions;
    {
        py::gil_scoped_release const release;
        distributions = level.Count(part == "exact"  ? Part::exact
                                    : part == "appr" ? Part::approximated
                                                     : Part::all);
    }
    py::dict out;
    out["membership"] = Out(distributions.membership);
    out["size"] = Out(distributions.size);
    out["overlap"] = Out(distributions.overlap);
    out["degree"] = Out(distributions.degree);
    return out;
}

// Of a run from its links to its last file, or to its cliques: then `source` gets what the levels
// are made from. The links are (source, target, weight or None, names as bytes), or None for the
// link file.
py::tuple Whole_run(std::string const& input, std::optional<std::string> const& output,
                    std::optional<Number> k, bool directed, std::optional<double> lower,
                    std::optional<double> upper, std::optional<double> intensity,
                    std::optional<double> time_limit, unsigned digits, unsigned threads, int log,
                    std::optional<py::tuple> const& links, py::object progress, py::object levels,
                    std::optional<py::dict> level_source) {
    Run_request const request{
        {directed, lower, upper, intensity, time_limit}, input, output, k, digits, threads, log};
    In<Number> source;
    In<Number> target;
    In<double> weight;
    std::vector<std::string> names;
    std::optional<Named_links> named;
    if (links) {
        source = In<Number>((*links)[0]);
        target = In<Number>((*links)[1]);
        if (!py::object((*links)[2]).is_none()) {
            weight = In<double>((*links)[2]);
        }
        names = (*links)[3].cast<std::vector<std::string>>();
        named = {{View(source), View(target), View(weight), names.size()}, names};
    }
    Python_watcher watcher(std::move(progress), std::move(levels));
    Run_report report;
    Level_source of_levels;
    {
        py::gil_scoped_release const release;
        report = level_source ? Run_to_cliques(request, named, watcher, of_levels)
                              : Run(request, named, watcher);
    }
    if (level_source) {
        (*level_source)["first"] = Out(of_levels.first);
        (*level_source)["second"] = Out(of_levels.second);
        (*level_source)["weight"] = Out(of_levels.weight);
        (*level_source)["names"] = Out(of_levels.names);
        (*level_source)["name_offsets"] = Out(of_levels.name_offsets);
        (*level_source)["cliques"] = Out(of_levels.cliques.members);
        (*level_source)["clique_offsets"] = Out(of_levels.cliques.offsets);
        (*level_source)["before_merge"] = Out(of_levels.before_merge.members);
        (*level_source)["before_merge_offsets"] = Out(of_levels.before_merge.offsets);
        (*level_source)["n_exact"] = of_levels.n_exact;
        (*level_source)["nested"] = of_levels.nested;
        (*level_source)["largest"] = of_levels.largest;
        (*level_source)["com_flag"] = py::bytes(of_levels.com_flag);
        (*level_source)["header"] = py::bytes(of_levels.header);
    }
    py::list not_written;
    for (std::string const& path : report.not_written) {
        not_written.append(py::bytes(path));
    }
    return py::make_tuple(py::bytes(report.directory), not_written);
}

std::unique_ptr<Level_files> Make_level_files(py::dict const& levels,
                                              std::optional<double> intensity,
                                              std::string const& directory) {
    auto const numbers = [&](char const* name) { return In<Number>(levels[name]); };
    auto const integers = [&](char const* name) { return In<Integer>(levels[name]); };
    auto const first = numbers("first");
    auto const second = numbers("second");
    auto const weight = In<double>(levels["weight"]);
    auto const names = In<std::uint8_t>(levels["names"]);
    auto const name_offsets = integers("name_offsets");
    auto const cliques = numbers("cliques");
    auto const clique_offsets = integers("clique_offsets");
    auto const before_merge = numbers("before_merge");
    auto const before_merge_offsets = integers("before_merge_offsets");
    Level_source_view const source{View(first),
                                   View(second),
                                   View(weight),
                                   View(names),
                                   View(name_offsets),
                                   View(cliques),
                                   View(clique_offsets),
                                   View(before_merge),
                                   View(before_merge_offsets),
                                   levels["n_exact"].cast<std::size_t>(),
                                   levels["nested"].cast<bool>(),
                                   levels["largest"].cast<Number>(),
                                   levels["com_flag"].cast<std::string>(),
                                   levels["header"].cast<std::string>(),
                                   intensity};
    py::gil_scoped_release const release;
    return std::make_unique<Level_files>(source, directory);
}

py::list Write_level(Level_files& files, Number k) {
    Python_watcher watcher{py::none()};
    std::vector<std::string> not_written;
    {
        py::gil_scoped_release const release;
        not_written = files.Write(k, watcher);
    }
    py::list paths;
    for (std::string const& path : not_written) {
        paths.append(py::bytes(path));
    }
    return paths;
}

py::tuple Read(std::string const& path, bool weighted) {
    File_links links;
    {
        py::gil_scoped_release const release;
        links = Read_links(path, weighted);
    }
    py::list names(links.names.size());
    for (std::size_t i = 0; i < links.names.size(); ++i) {
        names[i] = py::bytes(links.names[i]);
    }
    return py::make_tuple(names, Out(links.source), Out(links.target), Out(links.weight));
}

} // namespace

PYBIND11_MODULE(_engine, module) {
    module.doc() = "The engine of Plexor. Use the package `plexor`.";
    module.attr("version") = std::string(Version());
    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown) {
                std::rethrow_exception(thrown);
            }
        } catch (Engine_error const& error) {
            Throw_as_Python(error);
        }
    });
    py::class_<Search>(module, "Search")
        .def(py::init(&Make_search), py::arg("source"), py::arg("target"), py::arg("weight"),
             py::arg("n_nodes"), py::arg("directed"), py::arg("lower"), py::arg("upper"),
             py::arg("intensity"), py::arg("time_limit"), py::arg("threads"), py::arg("progress"))
        .def("nodes", [](Search const& search) { return Out(search.Nodes()); })
        .def("links",
             [](Search const& search) {
                 Links_out const links = search.Links();
                 return py::make_tuple(Out(links.source), Out(links.target), Out(links.weight));
             })
        .def("cliques", [](Search const& search) { return Out(search.Cliques()); })
        .def_property_readonly("n_exact_cliques", &Search::N_exact_cliques)
        .def_property_readonly("largest", &Search::Largest)
        .def("at", &At, py::arg("k"));
    py::class_<Levels_ahead>(module, "LevelsAhead")
        .def(py::init(&Ahead), py::arg("search"), py::arg("ks"), py::arg("threads"))
        .def("next", &Next);
    py::class_<Level>(module, "Level")
        .def_property_readonly("n_exact", &Level::N_exact)
        .def("nodes", [](Level const& level) { return Out(level.Nodes()); })
        .def("cliques", [](Level const& level) { return Out(level.Cliques()); })
        .def("k_cliques", [](Level const& level) { return Out(level.K_cliques()); })
        .def("links", &Links_of)
        .def("graph", &Graph_of)
        .def("count", &Count, py::arg("part"));
    module.def(
        "links_outside_triangles",
        [](In<Number> const& source, In<Number> const& target, std::size_t n_nodes) {
            return Out(Array(Links_outside_triangles(View(source), View(target), n_nodes)));
        },
        py::arg("source"), py::arg("target"), py::arg("n_nodes"));
    module.def(
        "number_nodes",
        [](In<Integer> const& source, In<Integer> const& target) {
            Numbered const numbered = Number_nodes(View(source), View(target));
            return py::make_tuple(Out(numbered.nodes), Out(numbered.source), Out(numbered.target));
        },
        py::arg("source"), py::arg("target"));
    module.def("read_links", &Read, py::arg("path"), py::arg("weighted"));
    plexor_formats::Register_edge_list_reader(module);
    module.def("run", &Whole_run, py::arg("input"), py::arg("output"), py::arg("k"),
               py::arg("directed"), py::arg("lower"), py::arg("upper"), py::arg("intensity"),
               py::arg("time_limit"), py::arg("digits"), py::arg("threads"), py::arg("log"),
               py::arg("links"), py::arg("progress"), py::arg("levels"),
               py::arg("level_source") = py::none());
    py::class_<Level_files>(module, "LevelFiles")
        .def(py::init(&Make_level_files), py::arg("levels"), py::arg("intensity"),
             py::arg("directory"))
        .def("write", &Write_level, py::arg("k"));
}
