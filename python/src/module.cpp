// The native module _tavrin of the Python package tavrin. Every function runs with the GIL
// held and the package's lock taken: the library is one process-wide state.
#include "bridge.h"

#include <pybind11/stl.h>

PYBIND11_MODULE(_tavrin, m)
{
    m.doc() = "Native side of the tavrin package; use the package, not this module.";

    py::register_exception<ItemErased>(m, "ItemErased", PyExc_ReferenceError);
    py::register_exception_translator([](std::exception_ptr p) {
        try {
            if (p) std::rethrow_exception(p);
        } catch (const BadArgument& e) {
            PyErr_SetString(PyExc_TypeError, e.what());
        }
    });

    m.def("start", &StartPackageSession, py::arg("user"));
    m.def("finish", &EndPackageSession);
    m.def("take_errors", [] {
        py::list out;
        for (const auto& e : TakeReportedErrors()) out.append(py::make_tuple(e.number, e.text));
        return out;
    });
    m.def("log_lines", &LogLines);
    m.def("clear_log", &ClearLogLines);
    m.def("set_policy", &SetQuestionPolicy);
    m.def("queue_answers", &QueueAnswers);
    m.def("clear_answers", &ClearAnswers);

    m.def("item_ids", &ItemIds);
    m.def("current_id", &CurrentItemId);
    m.def("open", &OpenFile);
    m.def("erase", &EraseItemById);
    m.def("kind", &ItemKind);
    m.def("title", &ItemTitle);
    m.def("unit", &ItemUnit);
    m.def("info_json", &ItemInfoJson);
    m.def("codes", &ItemCodes);
    m.def("values", &ItemValues);
    m.def("geometry", &ItemGeometry);
    m.def("samples", &ItemSamples);
    m.def("sweep", &ItemSweep);
    m.def("sweep_unit", &ItemSweepUnit);
    m.def("cube", &ItemCube, py::arg("id"), py::arg("values"));
    m.def("save_type", &SaveTypeOf);
    m.def("save_type_8bit", &SaveType8Bit);
    m.def("save", &SaveItem);
    m.def("image_units", &ImageUnits);
    m.def("new_image", &NewImage);
    m.def("new_spectrum", &NewSpectrum);
    m.def("render", &RenderItem);
    m.def("render_png", &RenderItemPng);

    m.def("entry_names", &EntryNames);
    m.def("host_commands", &HostCommandNames);
    m.def("call", &CallEntry);
}
