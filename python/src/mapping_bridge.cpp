// The SPS Mapping set of an image item as arrays: the sweep value of every image and the
// planes as one (ni, cy, cx) block, from the routine behind `tavrin map cube`.
#include "bridge.h"

#include "mapping/cits.h"

namespace {

const CITSHeaderType* SetOf(uint32_t id)
{
    const ImageHeaderType* item = ItemById(id);
    if (!item->CITSHeaderPtr || item->CITSHeaderPtr->ni < 1)
        throw std::invalid_argument("item " + std::to_string(id) + " holds no SPS Mapping set");
    return item->CITSHeaderPtr;
}

} // namespace

py::array_t<double> ItemSweep(uint32_t id)
{
    const CITSHeaderType* set = SetOf(id);
    py::array_t<double> sweep(static_cast<py::ssize_t>(set->ni));
    for (int k = 0; k < set->ni; ++k) sweep.mutable_data()[k] = CITSEntry(set, k)->voltage;
    sweep.attr("flags").attr("writeable") = false;
    return sweep;
}

std::string ItemSweepUnit(uint32_t id)
{
    SetOf(id);
    return GetCITSSweepUnit(ItemById(id));
}

py::array ItemCube(uint32_t id, bool values)
{
    const ImageHeaderType* item = ItemById(id);
    const CITSHeaderType* set = SetOf(id);
    const std::vector<py::ssize_t> shape = {set->ni, set->cy, set->cx};
    py::array cube = values ? py::array(py::array_t<float>(shape)) : py::array(py::array_t<uint16_t>(shape));
    if (static_cast<size_t>(cube.nbytes()) != CITSCubeBytes(item, !values) ||
        !CITSCube(item, !values, cube.mutable_data()))
        throw std::invalid_argument("item " + std::to_string(id) + ": the set has images without planes");
    cube.attr("flags").attr("writeable") = false;
    return cube;
}
