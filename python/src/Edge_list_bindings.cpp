// SPDX-License-Identifier: MIT
// The reader of tables as a function for plexor.formats.
#include "Edge_list_reader.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <memory>
#include <utility>

namespace plexor_formats {

namespace {

namespace py = pybind11;

template <class T> py::array_t<T> Array_of(std::vector<T>&& values) {
    auto owned = std::make_unique<std::vector<T>>(std::move(values));
    T const* const data = owned->data();
    auto const size = static_cast<py::ssize_t>(owned->size());
    py::capsule const capsule(owned.release(),
                              [](void* kept) { delete static_cast<std::vector<T>*>(kept); });
    return py::array_t<T>(size, data, capsule);
}

char const* Word(Fault fault) {
    switch (fault) {
    case Fault::long_line:
        return "long_line";
    case Fault::open_quotation:
        return "open_quotation";
    case Fault::text_after_quotation:
        return "text_after_quotation";
    case Fault::comment_or_link:
        return "comment_or_link";
    case Fault::percent_comment:
        return "percent_comment";
    case Fault::n_fields:
        return "n_fields";
    case Fault::no_number:
        return "no_number";
    case Fault::too_large:
        return "too_large";
    }
    return "";
}

py::dict Read_for_python(py::bytes const& data, py::bytes const& delimiter, bool quotes,
                         py::bytes const& comment, bool comment_decides, bool header,
                         std::size_t source, std::size_t target, std::optional<std::size_t> weight,
                         std::optional<std::size_t> fields, bool decimal_comma, bool escaped) {
    std::string const sign = delimiter;
    Dialect const dialect{sign.empty() ? '\0' : sign[0],
                          quotes,
                          comment,
                          comment_decides,
                          header,
                          source,
                          target,
                          weight,
                          fields,
                          decimal_comma,
                          escaped};
    std::string_view const view = data;
    Edge_table table;
    {
        py::gil_scoped_release const release;
        table = Read_edge_list(view, dialect);
    }
    py::dict out;
    if (table.failure) {
        Failure const& failure = *table.failure;
        out["failure"] = py::make_tuple(Word(failure.fault), failure.line, failure.n_fields,
                                        py::bytes(failure.text));
        return out;
    }
    out["failure"] = py::none();
    py::list names(table.name_ends.size());
    std::int64_t begin = 0;
    for (std::size_t i = 0; i < table.name_ends.size(); ++i) {
        PyObject* const name = PyUnicode_DecodeUTF8(
            table.names.data() + begin, static_cast<py::ssize_t>(table.name_ends[i] - begin),
            "surrogateescape");
        if (name == nullptr) {
            throw py::error_already_set();
        }
        names[i] = py::reinterpret_steal<py::object>(name);
        begin = table.name_ends[i];
    }
    out["names"] = names;
    out["source"] = Array_of(std::move(table.source));
    out["target"] = Array_of(std::move(table.target));
    out["weight"] = weight ? py::object(Array_of(std::move(table.weight))) : py::none();
    out["comments"] = table.comments;
    out["blank_lines"] = table.blank_lines;
    out["single_characters"] = table.single_characters;
    out["carriage_returns"] = table.carriage_returns;
    out["passed_over_here_alone"] = table.passed_over_here_alone;
    return out;
}

} // namespace

void Register_edge_list_reader(py::module_& module) {
    module.def("read_edge_list", &Read_for_python, py::arg("data"), py::arg("delimiter"),
               py::arg("quotes"), py::arg("comment"), py::arg("comment_decides"), py::arg("header"),
               py::arg("source"), py::arg("target"), py::arg("weight"), py::arg("fields"),
               py::arg("decimal_comma"), py::arg("escaped"));
}

} // namespace plexor_formats
