#include "item_info.h"
#include "mapping_info.h"
#include "store/data_list_select.h"
#include "tavrin/tavrin.h"
#include "store/header_json.h"
#include "store/history.h"
#include "store/image_header.h"
#include "store/titles.h"
#include "store/units.h"
#include "store/value_text.h"

#include <cstring>
#include <string>

void PrintItemInfo(FILE* out, bool json)
{
    ImageHeaderType* item = dl_GetCurrentImagePtr();
    if (!item) {
        std::fprintf(out, json ? "null\n" : "no item\n");
        return;
    }
    int position = 0;
    for (ImageHeaderType* p = item; p->Prev; p = p->Prev) ++position;
    char descriptor[512] = {};
    GetDataDescriptor(descriptor, position, 0, 16);
    char type[512] = {};
    GetImageTypeStr(item, type, sizeof type);
    std::string title = GetImageTitleStr(item);
    std::string unit = GetImageUnitStr(item, 0, 0);
    char letter = ClassLetter(item);
    // The processing history as the parameter text lists it.
    const char* history[kProcessListLength] = {};
    const int steps = ProcessHistoryLines(item, history);
    if (json) {
        std::string names = "[";
        for (int i = 0; i < steps; ++i) names += (i ? ", " : "") + JsonString(history[i], std::strlen(history[i]));
        names += "]";
        // An image with an SPS Mapping set has its set as "mapping" too.
        const std::string mapping = item->CITSHeaderPtr ? ", \"mapping\": " + MappingJson(item) : std::string();
        std::fprintf(out,
                     "{\"class\": %s, \"title\": %s, \"type\": %s, \"unit\": %s, \"header\": %s, \"history\": %s%s}\n",
                     JsonString(std::string(1, letter).c_str(), 1).c_str(), JsonString(title.c_str(), title.size()).c_str(),
                     JsonString(type, sizeof type).c_str(), JsonString(unit.c_str(), unit.size()).c_str(),
                     HeaderToJson(item).c_str(), names.c_str(), mapping.c_str());
        return;
    }
    std::fprintf(out, "item:   %s\n", descriptor);
    std::fprintf(out, "class:  %c\n", letter);
    std::fprintf(out, "title:  %s\n", title.c_str());
    std::fprintf(out, "type:   %s\n", type);
    if (CheckHeaderIsImageType(item)) {
        std::fprintf(out, "size:   %d x %d pixels", item->nx, item->ny);
        if (HasPhysicalSize(item))
            std::fprintf(out, ", %s", PairWithUnitText(item->ImageSizeX, item->ImageSizeY, [](int e) { return UnitsZ(e, 0); }).c_str());
        std::fprintf(out, "\n");
    } else {
        std::fprintf(out, "size:   %d points\n", item->nx);
    }
    std::fprintf(out, "range:  %s to %s %s\n", JsonFloat(item->Zlo).c_str(), JsonFloat(item->Zhi).c_str(), unit.c_str());
    PrintMappingInfo(out, item);
    if (steps > 0) {
        std::fprintf(out, "Processing :\n");
        for (int i = 0; i < steps; ++i) std::fprintf(out, "        %s\n", history[i]);
    }
}

