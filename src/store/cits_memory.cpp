#include "store/cits_memory.h"
#include "host/errors.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstring>
#include <vector>

namespace {

// The table of pixel blocks: an entry's pix_handle is its slot number + 1. Freed slots are
// used again, so the table stays as long as the most blocks ever alive at once.
std::vector<uint16_t*>& Blocks()
{
    static std::vector<uint16_t*> blocks;
    return blocks;
}
std::vector<uint32_t>& FreeSlots()
{
    static std::vector<uint32_t> slots;
    return slots;
}
size_t g_liveBlocks = 0;

uint32_t Register(uint16_t* block)
{
    ++g_liveBlocks;
    if (!FreeSlots().empty()) {
        const uint32_t slot = FreeSlots().back();
        FreeSlots().pop_back();
        Blocks()[slot] = block;
        return slot + 1;
    }
    Blocks().push_back(block);
    return static_cast<uint32_t>(Blocks().size());
}

bool IsMappingSide(int side)
{
    return side == 16 || side == 32 || side == 64 || side == 128 || side == 256 || side == 512;
}

} // namespace

size_t CITSHeaderBlockBytes(int ni)
{
    return sizeof(CITSHeaderType) + static_cast<size_t>(ni > 0 ? ni : 0) * sizeof(CITSImageEntryType);
}

CITSImageEntryType* CITSEntry(CITSHeaderType* header, int k)
{
    return reinterpret_cast<CITSImageEntryType*>(reinterpret_cast<uint8_t*>(header) + sizeof(CITSHeaderType)) + k;
}

const CITSImageEntryType* CITSEntry(const CITSHeaderType* header, int k)
{
    return reinterpret_cast<const CITSImageEntryType*>(reinterpret_cast<const uint8_t*>(header) +
                                                       sizeof(CITSHeaderType)) + k;
}

uint16_t* CITSPixels(const CITSImageEntryType* entry)
{
    if (!entry || !entry->pix_data || entry->pix_handle == 0 || entry->pix_handle > Blocks().size()) return nullptr;
    return Blocks()[entry->pix_handle - 1];
}

CITSHeaderType* GetCITSHeader(int ni, int16_t cx, int16_t cy)
{
    if (ni < 1 || ni >= kMaxCITSImages + 1) {
        ProgramError("GetCITSHeader");
        return nullptr;
    }
    auto* header = static_cast<CITSHeaderType*>(ecalloc(CITSHeaderBlockBytes(ni), 1));
    if (!header) {
        Error(ERR_NO_MEMORY);
        return nullptr;
    }
    header->set_id = NextDataId();
    header->rev = 700;
    header->ni = static_cast<int16_t>(ni);
    header->cx = cx;
    header->cy = cy;
    header->ci = 0;
    header->disp.flags = 7;
    header->disp.mode = 0;
    header->disp.n = 2;
    header->disp.select = 2;
    for (int i = 0; i < 64; ++i) header->disp.im_no[i] = -1;
    // voltage, z_low and z_high of every entry are 0.0: the block is zero-filled.
    return header;
}

bool AllocateCITSPixels(CITSHeaderType* header, CITSImageEntryType* entry)
{
    const size_t count = static_cast<size_t>(header->cx > 0 ? header->cx : 0) *
                         static_cast<size_t>(header->cy > 0 ? header->cy : 0);
    MemHandleType pair;
    if (!AllocateMem(count, 2, &pair)) return false;
    entry->pix_handle = Register(static_cast<uint16_t*>(pair.Ptr));
    entry->pix_data = 1;
    return true;
}

void FreeCITSPixels(CITSImageEntryType* entry)
{
    uint16_t* block = CITSPixels(entry);
    if (block) {
        efree(block);
        Blocks()[entry->pix_handle - 1] = nullptr;
        FreeSlots().push_back(entry->pix_handle - 1);
        --g_liveBlocks;
    }
    entry->pix_handle = 0;
    entry->pix_data = 0;
}

CITSHeaderType* AllocateCITSDataSet(int ni, int16_t cx, int16_t cy)
{
    CITSHeaderType* header = GetCITSHeader(ni, cx, cy);
    if (!header) return nullptr;
    for (int k = 0; k < ni; ++k) {
        if (!AllocateCITSPixels(header, CITSEntry(header, k))) {
            for (int j = 0; j < k; ++j) FreeCITSPixels(CITSEntry(header, j));
            FreeCITSHeader(header);
            return nullptr;
        }
    }
    return header;
}

void FreeCITSHeader(CITSHeaderType* header)
{
    if (!header) {
        ProgramError("FreeCITSHeader");
        return;
    }
    efree(header);
}

void DeallocateCITSDataSet(CITSHeaderType* header)
{
    if (!header) {
        ProgramError("DeallocateCITSDataSet");
        return;
    }
    for (int k = 0; k < header->ni; ++k) FreeCITSPixels(CITSEntry(header, k));
    FreeCITSHeader(header);
}

void ReplaceCITSHeaderPointers(const CITSHeaderType* old, CITSHeaderType* replacement)
{
    for (ImageHeaderType* item = FirstItem; item; item = item->Next)
        if (item->CITSHeaderPtr == old) SetCITSBlock(item, replacement);
}

void FreeCITSDataSetOfImage(ImageHeaderType* image)
{
    if (!image || !image->CITSHeaderPtr) return;
    CITSHeaderType* set = image->CITSHeaderPtr;
    DeallocateCITSDataSet(set);
    ReplaceCITSHeaderPointers(set, nullptr);
    SetCITSBlock(image, nullptr);
}

bool IsSquareMappingImage(const ImageHeaderType* image)
{
    if (!image || !image->CITSHeaderPtr) return false;
    const CITSHeaderType* set = image->CITSHeaderPtr;
    return IsMappingSide(set->cx) && image->nx == set->cx && image->ny == set->cx && set->cy == set->cx;
}

size_t LiveCITSPixelBlocks() { return g_liveBlocks; }
