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
    std::string json;
    // Each piece is appended on its own: one long chain of temporaries makes the optimiser see
    // overlapping copies that are not there.
    const auto add = [&json](const std::string& piece) { json.append(piece); };
    add("{\"kind\": ");
    add(JsonString(CITSKindName(item), 64));
    add(", \"MapType\": " + Number(item->MapType));
    add(", \"sweep_unit\": ");
    add(JsonString(GetCITSSweepUnit(item), 4));
    add(", \"rev\": " + Number(set->rev));
    add(", \"ni\": " + Number(set->ni));
    add(", \"cx\": " + Number(set->cx));
    add(", \"cy\": " + Number(set->cy));
    add(", \"ci\": " + Number(set->ci));
    add(", \"set_id\": " + Number(set->set_id));
    add(", \"disp\": {\"flags\": " + Number(d.flags));
    add(", \"n\": " + Number(d.n));
    add(", \"mode\": " + Number(d.mode));
    add(", \"v_low\": " + JsonFloat(static_cast<float>(d.v_low)));
    add(", \"v_high\": " + JsonFloat(static_cast<float>(d.v_high)));
    add(", \"select\": " + Number(d.select));
    add(", \"im_no\": [");
    for (int i = 0; i < 64; ++i) {
        if (i) add(", ");
        add(Number(d.im_no[i]));
    }
    add("]}, \"hit_data\": ");
    if (item->LMCHitDataPtr) {
        add("[" + Number(item->LMCHitDataCx));
        add(", " + Number(item->LMCHitDataCy) + "]");
    } else {
        add("null");
    }
    add(", \"images\": [");
    for (int k = 0; k < set->ni; ++k) {
        const CITSImageEntryType* e = CITSEntry(set, k);
        if (k) add(", ");
        add("{\"voltage\": " + JsonFloat(e->voltage));
        add(", \"z_low\": " + JsonFloat(e->z_low));
        add(", \"z_high\": " + JsonFloat(e->z_high));
        add(", \"data_type\": " + Number(e->data_type));
        add(", \"title\": ");
        add(Text(e->title, sizeof e->title));
        add("}");
    }
    add("]}");
    return json;
}
