#include "mapping_info.h"
#include "mapping/cits.h"
#include "store/header_json.h"

#include <cstring>

namespace {

std::string Number(long long value) { return std::to_string(value); }

std::string Text(const char* text, size_t size) { return JsonString(text, strnlen(text, size)); }

} // namespace

void PrintMappingInfo(FILE* out, const ImageHeaderType* item)
{
    const CITSHeaderType* set = item ? item->CITSHeaderPtr : nullptr;
    if (!set) return;
    float vLow = 0, vHigh = 0, zLow = 0, zHigh = 0;
    GetCITSVoltageRange(set, &vLow, &vHigh);
    GetCITSDataRange(set, &zLow, &zHigh);
    std::fprintf(out, "mapping: %s, SPS Mapping of %d images of %d x %d pixels\n", CITSKindName(item), set->ni,
                 set->cx, set->cy);
    std::fprintf(out, "sweep:  %s to %s %s\n", JsonFloat(vLow).c_str(), JsonFloat(vHigh).c_str(), GetCITSSweepUnit(item));
    std::fprintf(out, "data:   %s to %s\n", JsonFloat(zLow).c_str(), JsonFloat(zHigh).c_str());
    if (item->LMCHitDataPtr)
        std::fprintf(out, "hits:   %d x %d threshold hit records\n", item->LMCHitDataCx, item->LMCHitDataCy);
    else
        std::fprintf(out, "hits:   none\n");
}

std::string MappingJson(const ImageHeaderType* item)
{
    const CITSHeaderType* set = item ? item->CITSHeaderPtr : nullptr;
    if (!set) return "null";
    const CITSDispBlockType& d = set->disp;
    std::string numbers;
    for (int i = 0; i < 64; ++i) numbers += (i ? ", " : "") + Number(d.im_no[i]);
    std::string json = "{\"kind\": " + JsonString(CITSKindName(item), 64) + ", \"MapType\": " + Number(item->MapType) +
                       ", \"sweep_unit\": " + JsonString(GetCITSSweepUnit(item), 4) + ", \"rev\": " + Number(set->rev) +
                       ", \"ni\": " + Number(set->ni) + ", \"cx\": " + Number(set->cx) + ", \"cy\": " + Number(set->cy) +
                       ", \"ci\": " + Number(set->ci) + ", \"set_id\": " + Number(set->set_id) + ", \"disp\": {\"flags\": " +
                       Number(d.flags) + ", \"n\": " + Number(d.n) + ", \"mode\": " + Number(d.mode) +
                       ", \"v_low\": " + JsonFloat(static_cast<float>(d.v_low)) + ", \"v_high\": " +
                       JsonFloat(static_cast<float>(d.v_high)) + ", \"select\": " + Number(d.select) + ", \"im_no\": [" +
                       numbers + "]}, \"hit_data\": " +
                       (item->LMCHitDataPtr ? "[" + Number(item->LMCHitDataCx) + ", " + Number(item->LMCHitDataCy) + "]"
                                            : std::string("null")) +
                       ", \"images\": [";
    for (int k = 0; k < set->ni; ++k) {
        const CITSImageEntryType* e = CITSEntry(set, k);
        json += std::string(k ? ", " : "") + "{\"voltage\": " + JsonFloat(e->voltage) + ", \"z_low\": " +
                JsonFloat(e->z_low) + ", \"z_high\": " + JsonFloat(e->z_high) + ", \"data_type\": " +
                Number(e->data_type) + ", \"title\": " + Text(e->title, sizeof e->title) + "}";
    }
    return json + "]}";
}
