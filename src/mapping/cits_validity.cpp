#include "host/errors.h"
#include "host/log.h"
#include "mapping/cits.h"

#include <cstring>

namespace {

bool IsMappingSide(int side)
{
    return side == 16 || side == 32 || side == 64 || side == 128 || side == 256 || side == 512;
}

int16_t ImNoAt(const CITSHeaderType* header, int i)
{
    // The entries behind the last one are the display block's reserved bytes: still inside it.
    int16_t value;
    std::memcpy(&value, reinterpret_cast<const uint8_t*>(&header->disp.im_no) + 2 * i, sizeof value);
    return value;
}

// Revision groups of sets: how an entry of each is brought up to date.
enum class EntryUpgrade { FromOldType, Unchanged, Current, Unknown };

EntryUpgrade UpgradeOfRevision(int rev)
{
    if (rev == 0 || (rev >= 100 && rev <= 105) || (rev >= 200 && rev <= 206) || rev == 300)
        return EntryUpgrade::FromOldType;
    if ((rev >= 301 && rev <= 310) || (rev >= 400 && rev <= 407) || rev == 500 || rev == 501 || rev == 510 ||
        rev == 520 || rev == 600 || rev == 603)
        return EntryUpgrade::Unchanged;
    if ((rev >= 604 && rev <= 607) || rev == 700) return EntryUpgrade::Current;
    return EntryUpgrade::Unknown;
}

uint32_t DataTypeOfOldType(uint8_t oldType)
{
    switch (oldType) {
    case 0: return 1;
    case 1: return 8;
    case 2: return 4;
    default: return 2048;
    }
}

// The LMC threshold block of a record as a new one holds it: both off, levels 0, selectors 3.
void ResetThresholdBlock(ImageHeaderType* image)
{
    image->LMCThreshold1On = 0;
    image->LMCThreshold2On = 0;
    image->LMCThreshold1 = 0.0;
    image->LMCThreshold2 = 0.0;
    image->LMCThreshold1Dir = 3;
    image->LMCThreshold2Dir = 3;
}

bool IsHitChannel(int32_t channel)
{
    if (channel == 0) return true;
    const auto bits = static_cast<uint32_t>(channel);
    // Exactly one of bits 0 to 22; bit 19 (0x80000) is no channel.
    return (bits & (bits - 1)) == 0 && bits <= 0x400000u && bits != 0x80000u;
}

} // namespace

int CheckValidCITSHeader(const CITSHeaderType* header)
{
    if (!header) {
        ProgramError("CheckValidCITSHeader");
        return 0;
    }
    const bool fields = header->rev < 701 && header->ni >= 1 && header->ni <= kMaxCITSImages &&
                        IsMappingSide(header->cx) && static_cast<uint16_t>(header->cy) == static_cast<uint16_t>(header->cx) &&
                        header->disp.n >= 1 && header->disp.n <= 1024 && header->ci >= 0 && header->ci < header->ni;
    if (!fields) {
        Log("SPS Mapping Header: rev=%d ni=%d cx=%d cy=%d disp.n=%d ci=%d\n", header->rev, header->ni, header->cx,
            header->cy, header->disp.n, header->ci);
        return 0;
    }
    // The reserved bytes, and the two bytes behind the last of them (the stored set_id).
    const auto* space = reinterpret_cast<const uint8_t*>(header) + offsetof(CITSHeaderType, IHspace);
    for (int i = 0; i < static_cast<int>(sizeof header->IHspace); ++i) {
        if (space[i] != 0) {
            Log("CheckValidCITSHeader i=%d IHspace=%d %d %d\n", i, space[i], space[i + 1], space[i + 2]);
            return 0;
        }
    }
    for (int i = 0; i < 64; ++i) {
        if (ImNoAt(header, i) >= kMaxCITSImages) {
            Log("CheckValidCITSHeader i=%d disp.im_no=%d %d %d\n", i, ImNoAt(header, i), ImNoAt(header, i + 1),
                ImNoAt(header, i + 2));
            return 0;
        }
    }
    return 1;
}

int CheckValidCITSImageEntry(const CITSImageEntryType* entry)
{
    if (!entry) {
        ProgramError("CheckValidCITSImageEntry");
        return 0;
    }
    const float voltage = entry->voltage;
    return voltage >= -10000.0f && voltage <= 10000.0f && entry->adc_gain > 0 && entry->adc_gain < 1000 &&
           entry->i_divider >= 1 && entry->i_divider <= 100 && entry->adc_offset >= -10000 &&
           entry->adc_offset <= 10000 && strnlen(entry->title, sizeof entry->title) < sizeof entry->title;
}

void UpdateCITSImageHeader(ImageHeaderType* image, CITSImageEntryType* entry)
{
    if (!image || !image->CITSHeaderPtr || !entry) {
        ProgramError("UpdateCITSImageHeader");
        return;
    }
    CITSHeaderType* set = image->CITSHeaderPtr;
    const EntryUpgrade upgrade = UpgradeOfRevision(set->rev);
    if (upgrade == EntryUpgrade::Unknown) {
        ProgramError("UpdateCITSImageHeader %d", set->rev);
        return;
    }
    if (upgrade == EntryUpgrade::FromOldType) entry->data_type = DataTypeOfOldType(entry->old_type);
    if (upgrade != EntryUpgrade::Current && image->SubRevNo < 18) ResetThresholdBlock(image);
    // Mode 4 lives only until the next load.
    if (set->disp.mode == 4) set->disp.mode = 2;
}

int CheckLMCThresholdHitData(const ImageHeaderType* image)
{
    const bool hasSet = image && image->CITSHeaderPtr;
    const bool hasHits = image && image->LMCHitDataPtr;
    if (!hasSet || !hasHits || !IsSquareMappingImage(image)) {
        ProgramError("CheckLMCThresholdHitData %d %d %d", image ? 1 : 0, hasSet ? 1 : 0, hasHits ? 1 : 0);
        return -1;
    }
    const size_t records = static_cast<size_t>(image->LMCHitDataCx) * static_cast<size_t>(image->LMCHitDataCy);
    int bad = 0;
    for (size_t i = 0; i < records; ++i) {
        LMCThresholdHitType record;
        std::memcpy(&record, image->LMCHitDataPtr + i * sizeof record, sizeof record);
        if (!IsHitChannel(record.channel)) ++bad;
        if (record.hit < 0 || record.hit > 2) ++bad;
        if (record.hit != 0 && !(record.position >= -1e9f && record.position <= 1e9f)) ++bad;
    }
    return bad;
}

void WalkCITSEntrySourceWords(ImageHeaderType* image, void (*visit)(uint32_t* word, void* context), void* context)
{
    if (!image || !image->CITSHeaderPtr || !visit) return;
    CITSHeaderType* set = image->CITSHeaderPtr;
    for (int k = 0; k < set->ni; ++k) {
        CITSImageEntryType* entry = CITSEntry(set, k);
        uint32_t word = entry->data_type;
        visit(&word, context);
        entry->data_type = word;
    }
}
