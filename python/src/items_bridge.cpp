// Items of the data list for Python: found by number on every use, so that an object whose
// item was erased raises instead of reading freed memory; arrays are copies owned by numpy.
#include "bridge.h"

#include <pybind11/stl.h>
#include "files/sample_data.h"
#include "host/text.h"
#include "item_info.h"
#include "items.h"
#include "picture.h"
#include "session.h"
#include "store/data_list.h"
#include "store/data_list_select.h"
#include "store/image_header.h"
#include "store/titles.h"
#include "store/units.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

namespace {

ImageHeaderType* ImageItem(uint32_t id)
{
    ImageHeaderType* item = ItemById(id);
    if (!CheckHeaderIsImageType(item) || !item->PixData)
        throw std::invalid_argument("item " + std::to_string(id) + " is no image");
    return item;
}

ImageHeaderType* SpectrumItem(uint32_t id)
{
    ImageHeaderType* item = ItemById(id);
    if (!CheckHeaderIsSpecType(item) || !item->PixData)
        throw std::invalid_argument("item " + std::to_string(id) + " is no spectrum");
    return item;
}

// The current item is set for a command on another item and given back afterwards, when it
// is still on the list.
struct CurrentFor {
    ImageHeaderType* before = CurrentItem;
    explicit CurrentFor(ImageHeaderType* item) { CurrentItem = item; }
    ~CurrentFor()
    {
        if (before && IsInList(before)) CurrentItem = before;
    }
};

template <typename T>
py::array_t<T> ReadOnly(py::array_t<T> a)
{
    a.attr("flags").attr("writeable") = false;
    return a;
}

// The data source whose unit at exponent 0 is `unit`, for an item of that class; 0 when none.
// Only sources of linear values qualify (source 3 holds decades).
uint32_t SourceForUnit(const std::string& unit, uint32_t imageClass, std::vector<std::string>* all = nullptr)
{
    static ImageHeaderType probe;
    InitImageHeader(&probe, 16, 16);
    probe.SPMData = 1;
    probe.ImType1 = imageClass;
    for (uint32_t source = 1; source <= 27; ++source) {
        if (source == 3) continue;
        probe.DataSource = source;
        const std::string u = GetImageUnitStr(&probe, 0, 0);
        if (all) {
            if (!u.empty() && std::find(all->begin(), all->end(), u) == all->end()) all->push_back(u);
        } else if (u == unit) {
            return source;
        }
    }
    return 0;
}

void RequireFinite(const double* v, size_t n, const char* what)
{
    for (size_t i = 0; i < n; ++i)
        if (!std::isfinite(v[i])) throw std::invalid_argument(std::string(what) + " holds a value that is not finite");
}

uint32_t SourceOrThrow(const std::string& unit, uint32_t imageClass)
{
    const uint32_t source = SourceForUnit(unit, imageClass);
    if (source) return source;
    std::string known;
    for (const auto& u : ImageUnits()) known += (known.empty() ? "" : ", ") + u;
    throw std::invalid_argument("unit '" + unit + "' is none of the library's units (" + known + ")");
}

} // namespace

ImageHeaderType* ItemById(uint32_t id)
{
    ImageHeaderType* item = FindItemById(id);
    if (!item) throw ItemErased("item " + std::to_string(id) + " is no longer on the data list");
    return item;
}

std::vector<uint32_t> ItemIds()
{
    std::vector<uint32_t> ids;
    for (ImageHeaderType* p = FirstItem; p; p = p->Next) ids.push_back(p->DataId);
    return ids;
}

std::optional<uint32_t> CurrentItemId()
{
    if (!CurrentItem) return std::nullopt;
    return uint32_t{CurrentItem->DataId};
}

std::vector<uint32_t> OpenFile(const std::string& path)
{
    const std::vector<uint32_t> before = ItemIds();
    const std::set<uint32_t> known(before.begin(), before.end());
    // The library's texts from here on are about this file.
    Session().workFile = path;
    dl_OpenSTMData(0, path.c_str());
    std::vector<uint32_t> brought;
    for (uint32_t id : ItemIds())
        if (!known.count(id)) brought.push_back(id);
    return brought;
}

void EraseItemById(uint32_t id) { EraseItem(ItemById(id)); }

std::string ItemKind(uint32_t id)
{
    const ImageHeaderType* item = ItemById(id);
    switch (ClassLetter(item)) {
    case 'I': return "image";
    case 'F': return "fft";
    case 'C': return "mapping";
    default: break;
    }
    switch (item->ImType1) {
    case IMTYPE_SPECTRUM: return "spectrum";
    case IMTYPE_PROFILE: return "profile";
    case IMTYPE_HISTOGRAM: return "histogram";
    case IMTYPE_FREQUENCY_SWEEP: return "frequency sweep";
    case IMTYPE_PHASE_SHIFT: return "phase shift";
    case IMTYPE_SCAN_LINE:
    case IMTYPE_SCAN_LINE2: return "scan line";
    default: return "unknown";
    }
}

std::string ItemTitle(uint32_t id) { return GetImageTitleStr(ItemById(id)); }

std::string ItemUnit(uint32_t id) { return GetImageUnitStr(ItemById(id), 0, 0); }

std::string ItemInfoJson(uint32_t id)
{
    ImageHeaderType* item = ItemById(id);
    CurrentFor current(item);
    char* text = nullptr;
    size_t length = 0;
    FILE* out = open_memstream(&text, &length);
    if (!out) throw std::runtime_error("no memory for the item's description");
    PrintItemInfo(out, true);
    std::fclose(out);
    std::string json(text ? text : "", length);
    std::free(text);
    return json;
}

py::array_t<uint16_t> ItemCodes(uint32_t id)
{
    const ImageHeaderType* item = ImageItem(id);
    py::array_t<uint16_t> codes({static_cast<py::ssize_t>(item->ny), static_cast<py::ssize_t>(item->nx)});
    std::memcpy(codes.mutable_data(), item->PixData, DataBlockBytes(item));
    return ReadOnly(std::move(codes));
}

py::array_t<double> ItemValues(uint32_t id)
{
    const ImageHeaderType* item = ItemById(id);
    if (CheckHeaderIsSpecType(item) && item->PixData) {
        const auto* y = reinterpret_cast<const float*>(item->PixData);
        py::array_t<double> values(static_cast<py::ssize_t>(item->nx));
        double* v = values.mutable_data();
        for (int i = 0; i < item->nx; ++i) v[i] = ImageDataValue2Calibrated(item, y[i], 0);
        return ReadOnly(std::move(values));
    }
    item = ImageItem(id);
    py::array_t<double> values({static_cast<py::ssize_t>(item->ny), static_cast<py::ssize_t>(item->nx)});
    double* v = values.mutable_data();
    // Each code that occurs is converted once.
    std::vector<float> table(65536);
    std::vector<bool> known(65536, false);
    const size_t n = static_cast<size_t>(item->nx) * static_cast<size_t>(item->ny);
    for (size_t i = 0; i < n; ++i) {
        const uint16_t code = item->PixData[i];
        if (!known[code]) {
            table[code] = GetImageDataValue(1, code, item);
            known[code] = true;
        }
        v[i] = table[code];
    }
    return ReadOnly(std::move(values));
}

py::tuple ItemGeometry(uint32_t id)
{
    const ImageHeaderType* item = ItemById(id);
    return py::make_tuple(item->nx, item->ny, item->ImageSizeX, item->ImageSizeY);
}

py::tuple ItemSamples(uint32_t id)
{
    const ImageHeaderType* item = SpectrumItem(id);
    const auto* samples = reinterpret_cast<const float*>(item->PixData);
    const py::ssize_t n = item->nx;
    py::array_t<double> x(n), y(n);
    for (py::ssize_t i = 0; i < n; ++i) {
        y.mutable_data()[i] = samples[i];
        x.mutable_data()[i] = samples[n + i];
    }
    return py::make_tuple(ReadOnly(std::move(x)), ReadOnly(std::move(y)));
}

int SaveTypeOf(const std::string& path) { return SaveTypeFor(path, false); }

int SaveType8Bit() { return SaveTypeFor(".tif", true); }

int SaveItem(uint32_t id, const std::string& path, int type)
{
    ImageHeaderType* item = ItemById(id);
    if (type == 0) type = SaveTypeFor(path, false);
    if (type == 0)
        throw std::invalid_argument("the extension of '" + path + "' names no file type (.tif .bin .bft .asc .aft .spc .dat .hdr)");
    CurrentFor current(item);
    Session().workFile = path;
    return dl_SaveData(static_cast<wint_SaveFileType>(type), path.c_str(), 0, 0);
}

std::vector<std::string> ImageUnits()
{
    std::vector<std::string> units;
    SourceForUnit("", IMTYPE_IMAGE, &units);
    return units;
}

std::optional<uint32_t> NewImage(py::array_t<double, py::array::c_style | py::array::forcecast> values, double width, double height,
                  const std::string& unit, const std::string& title)
{
    if (values.ndim() != 2) throw std::invalid_argument("new_image takes a 2-D array, not " + std::to_string(values.ndim()) + "-D");
    const auto ny = values.shape(0), nx = values.shape(1);
    const bool powerOfTwo = nx >= 16 && nx <= 4096 && (nx & (nx - 1)) == 0;
    if (nx != ny || !powerOfTwo)
        throw std::invalid_argument("new_image takes a square image of a power of two from 16 to 4096 pixels, not " +
                                    std::to_string(ny) + " x " + std::to_string(nx));
    if (!(width > 0) || !(height > 0) || !std::isfinite(width) || !std::isfinite(height))
        throw std::invalid_argument("size_nm must be two sizes above 0");
    const uint32_t source = SourceOrThrow(unit, IMTYPE_IMAGE);
    const size_t n = static_cast<size_t>(nx) * static_cast<size_t>(ny);
    RequireFinite(values.data(), n, "the image");
    std::vector<double> z(values.data(), values.data() + n);
    ImageHeaderType* item = ImageFromHeights(CurrentItem, z, static_cast<int>(nx));
    if (!item) return std::nullopt;
    item->SPMData = 1;
    item->DataSource = source;
    item->ImageSizeX = static_cast<float>(width);
    item->ImageSizeY = static_cast<float>(height);
    strncpy0(item->Title, title.c_str(), sizeof item->Title);
    CurrentItem = item;
    return uint32_t{item->DataId};
}

std::optional<uint32_t> NewSpectrum(py::array_t<double, py::array::c_style | py::array::forcecast> x,
                     py::array_t<double, py::array::c_style | py::array::forcecast> y, const std::string& title,
                     const std::string& xTitle, const std::string& yTitle, const std::string& unit)
{
    if (x.ndim() != 1 || y.ndim() != 1 || x.shape(0) != y.shape(0))
        throw std::invalid_argument("new_spectrum takes x and y as 1-D arrays of one length");
    const auto n = x.shape(0);
    if (n < 3 || n > 8192) throw std::invalid_argument("a spectrum has 3 to 8192 points, not " + std::to_string(n));
    const uint32_t source = SourceOrThrow(unit, IMTYPE_SPECTRUM);
    RequireFinite(x.data(), static_cast<size_t>(n), "x");
    RequireFinite(y.data(), static_cast<size_t>(n), "y");
    std::vector<double> xs(x.data(), x.data() + n), ys(y.data(), y.data() + n);
    ImageHeaderType* item = SpectrumFromSamples(CurrentItem, xs, ys);
    if (!item) return std::nullopt;
    item->SPMData = 1;
    item->DataSource = source;
    strncpy0(item->Title, title.c_str(), sizeof item->Title);
    strncpy0(item->SpecXTitle, xTitle.c_str(), sizeof item->SpecXTitle);
    strncpy0(item->SpecYTitle, yTitle.c_str(), sizeof item->SpecYTitle);
    CurrentItem = item;
    return uint32_t{item->DataId};
}

namespace {

// Shows the current item in the current frame store as the host's render does.
HostFrameStore& ShowInFrameStore(int mode, int table, int size, bool full)
{
    if (mode < 0 || mode > 4) throw std::invalid_argument("mode is 0 to 4");
    if (table < -1 || table > 7) throw std::invalid_argument("table is 0 to 7");
    if (size < -1 || size > 4096) throw std::invalid_argument("size is 0 to 4096");
    HostFrameStore* fs = FindHostFrameStore(Session().currentFrameStore);
    if (!fs) throw std::runtime_error("no frame store is open");
    ShowCurrentItem(ShowOptions{mode, size, table, full});
    return *fs;
}

} // namespace

py::array_t<uint8_t> RenderItem(uint32_t id, int mode, int table, int size, bool full)
{
    ImageHeaderType* item = ImageItem(id);
    CurrentFor current(item);
    HostFrameStore& fs = ShowInFrameStore(mode, table, size, full);
    PaintFrameStore(fs);
    const int w = tv_canvas_width(fs.window), h = tv_canvas_height(fs.window);
    const uint32_t* pixels = tv_canvas_pixels(fs.window);
    py::array_t<uint8_t> picture({static_cast<py::ssize_t>(h), static_cast<py::ssize_t>(w), py::ssize_t{3}});
    uint8_t* out = picture.mutable_data();
    for (size_t i = 0; i < static_cast<size_t>(w) * static_cast<size_t>(h); ++i) {
        out[i * 3] = static_cast<uint8_t>(pixels[i]);
        out[i * 3 + 1] = static_cast<uint8_t>(pixels[i] >> 8);
        out[i * 3 + 2] = static_cast<uint8_t>(pixels[i] >> 16);
    }
    return picture;
}

void RenderItemPng(uint32_t id, int mode, int table, int size, bool full, const std::string& path)
{
    ImageHeaderType* item = ImageItem(id);
    CurrentFor current(item);
    HostFrameStore& fs = ShowInFrameStore(mode, table, size, full);
    if (!WriteFrameStorePicture(fs, path)) throw std::runtime_error("cannot write '" + path + "'");
}
