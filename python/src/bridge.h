// The native side of the Python package: the host session of the command-line host, started
// once per process, and the data list reached by item number (DataId), never by a kept pointer.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "session.h"
#include "tavrin/tavrin.h"

namespace py = pybind11;

// An item number that is no longer on the data list: the Python object outlived its item.
struct ItemErased : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A wrong argument of a call (a number that is none, a field the record does not have, ...).
struct BadArgument : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct ReportedError {
    unsigned number;
    std::string text;
};

// session_bridge.cpp
bool StartPackageSession(const std::string& user);
void EndPackageSession();
std::vector<ReportedError> TakeReportedErrors();   // since the last take
std::vector<std::string> LogLines();
void ClearLogLines();
// The policy of questions: a callable (text, caption, buttons, default) -> answer or None.
void SetQuestionPolicy(py::object policy);
void QueueAnswers(const std::vector<py::object>& answers);
void ClearAnswers();
// A Python answer (None, "yes", "no", "ok", "cancel", a number, or a text) as the host's answer.
Answer AnswerFromPython(const py::handle& value);

// items_bridge.cpp
ImageHeaderType* ItemById(uint32_t id);          // throws ItemErased
std::vector<uint32_t> ItemIds();
std::optional<uint32_t> CurrentItemId();   // none when the list is empty
std::vector<uint32_t> OpenFile(const std::string& path);   // the items the open brought
void EraseItemById(uint32_t id);
std::string ItemKind(uint32_t id);
std::string ItemTitle(uint32_t id);
std::string ItemUnit(uint32_t id);
std::string ItemInfoJson(uint32_t id);   // as `tavrin info --json` prints it
py::array_t<uint16_t> ItemCodes(uint32_t id);
py::array_t<double> ItemValues(uint32_t id);
py::tuple ItemGeometry(uint32_t id);              // (nx, ny, size x, size y)
py::tuple ItemSamples(uint32_t id);               // (x, y) of a spectrum
py::array_t<double> ItemSweep(uint32_t id);       // the sweep value of each image of the set
std::string ItemSweepUnit(uint32_t id);           // "V", or "nm" for a displacement sweep
py::array ItemCube(uint32_t id, bool values);     // (ni, cy, cx): f32 values or u16 codes
int SaveItem(uint32_t id, const std::string& path, int type);
int SaveTypeOf(const std::string& path);
int SaveType8Bit();
// The new item's number, or none when the library reported a failure.
std::optional<uint32_t> NewImage(py::array_t<double, py::array::c_style | py::array::forcecast> values, double width,
                  double height, const std::string& unit, const std::string& title);
std::optional<uint32_t> NewSpectrum(py::array_t<double, py::array::c_style | py::array::forcecast> x,
                     py::array_t<double, py::array::c_style | py::array::forcecast> y, const std::string& title,
                     const std::string& xTitle, const std::string& yTitle, const std::string& unit);
std::vector<std::string> ImageUnits();
py::array_t<uint8_t> RenderItem(uint32_t id, int mode, int table, int size, bool full);
void RenderItemPng(uint32_t id, int mode, int table, int size, bool full, const std::string& path);

// call_bridge.cpp
std::vector<std::string> EntryNames();
std::vector<std::string> HostCommandNames();
// (returned, value word, outputs) of an entry point; a host command answers its printed text
// as the one output.
py::tuple CallEntry(const std::string& name, const std::vector<std::pair<std::string, bool>>& words,
                    const std::vector<std::pair<std::string, std::string>>& fields);
