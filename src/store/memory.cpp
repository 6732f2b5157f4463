#include "store/memory.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/log.h"
#include "store/cits_memory.h"
#include "store/image_header.h"
#include "platform/large_blocks.h"

#include <cfloat>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

namespace {

// A live block: its size, and whether it is a mapped large block or came from malloc.
struct LiveBlock {
    size_t bytes;
    bool mapped;
};

// Live blocks by address. The key is the address as a number: the registry never reads the
// blocks themselves.
std::unordered_map<uintptr_t, LiveBlock>& Registry()
{
    static std::unordered_map<uintptr_t, LiveBlock> registry;
    return registry;
}

size_t g_liveBytes = 0;
int g_failSkip = 0;
int g_failCount = 0;
uint32_t g_dataIdCounter = 0;

bool InjectedFailure()
{
    if (g_failCount <= 0) return false;
    if (g_failSkip > 0) {
        --g_failSkip;
        return false;
    }
    --g_failCount;
    return true;
}

void Track(void* block, size_t bytes, bool mapped)
{
    Registry()[reinterpret_cast<uintptr_t>(block)] = LiveBlock{bytes, mapped};
    g_liveBytes += bytes;
}

bool IsLarge(size_t bytes) { return bytes >= kLargeBlockBytes; }

// A fresh block, zeroed or not; large ones come mapped with their pages present.
void* Obtain(size_t bytes, bool zeroed)
{
    void* block = IsLarge(bytes) ? MapLargeBlock(bytes) : zeroed ? std::calloc(bytes ? bytes : 1, 1)
                                                                 : std::malloc(bytes ? bytes : 1);
    if (block) Track(block, bytes, IsLarge(bytes));
    return block;
}

void Release(void* block, const LiveBlock& live)
{
    if (live.mapped) UnmapLargeBlock(block, live.bytes);
    else std::free(block);
}

// A block of the registry at a new size, moving between malloc and a mapping when the size
// crosses the large-block line.
void* Resize(void* block, const LiveBlock& live, size_t bytes)
{
    if (live.mapped && IsLarge(bytes)) return RemapLargeBlock(block, live.bytes, bytes);
    if (!live.mapped && !IsLarge(bytes)) return std::realloc(block, bytes ? bytes : 1);
    void* moved = IsLarge(bytes) ? MapLargeBlock(bytes) : std::malloc(bytes ? bytes : 1);
    if (!moved) return nullptr;
    std::memcpy(moved, block, live.bytes < bytes ? live.bytes : bytes);
    Release(block, live);
    return moved;
}

bool MulOverflows(size_t a, size_t b, size_t* product)
{
    return __builtin_mul_overflow(a, b, product);
}

} // namespace

void* emalloc(size_t bytes)
{
    if (InjectedFailure()) return nullptr;
    return Obtain(bytes, false);
}

void* ecalloc(size_t count, size_t size)
{
    size_t bytes = 0;
    if (MulOverflows(count, size, &bytes) || InjectedFailure()) return nullptr;
    return Obtain(bytes, true);
}

void* erealloc(void* block, size_t bytes)
{
    if (!block) return emalloc(bytes);
    if (InjectedFailure()) return nullptr;
    auto it = Registry().find(reinterpret_cast<uintptr_t>(block));
    if (it == Registry().end()) {
        void* moved = std::realloc(block, bytes ? bytes : 1);
        if (moved) Track(moved, bytes, false);
        return moved;
    }
    const LiveBlock live = it->second;
    void* moved = Resize(block, live, bytes);
    if (!moved) return nullptr;
    // The old address is only a key now; it is never followed.
    Registry().erase(reinterpret_cast<uintptr_t>(block));
    g_liveBytes -= live.bytes;
    Track(moved, bytes, IsLarge(bytes));
    return moved;
}

void efree(void* block)
{
    if (!block) return;
    auto it = Registry().find(reinterpret_cast<uintptr_t>(block));
    if (it == Registry().end()) {
        std::free(block);
        return;
    }
    const LiveBlock live = it->second;
    g_liveBytes -= live.bytes;
    Registry().erase(it);
    Release(block, live);
}

void efree_check(void* block)
{
    if (!block) return;
    if (Registry().find(reinterpret_cast<uintptr_t>(block)) == Registry().end()) {
        Log("efree_check: invalid pointer\n");
        return;
    }
    efree(block);
}

bool AllocateMemNoErr(size_t count, size_t size, MemHandleType* pair)
{
    if (!pair) {
        ProgramError("AllocateMemNoErr");
        return false;
    }
    *pair = MemHandleType{0, nullptr};
    size_t bytes = 0;
    if (MulOverflows(count, size, &bytes)) return false;
    pair->Handle = 1;
    pair->Ptr = emalloc(bytes);
    if (!pair->Ptr) pair->Handle = 0;
    return pair->Handle != 0 && pair->Ptr != nullptr;
}

bool AllocateMem(size_t count, size_t size, MemHandleType* pair)
{
    if (AllocateMemNoErr(count, size, pair)) return true;
    if (pair) Error(ERR_NO_MEMORY_IMAGE);
    return false;
}

int FreeMem(uint32_t handle, void* ptr)
{
    if (handle != 0 && ptr != nullptr) efree(ptr);
    return 1;
}

bool ReallocateMemNoErr(size_t count, size_t size, MemHandleType* pair)
{
    if (!pair) return false;
    size_t bytes = 0;
    if (MulOverflows(count, size, &bytes)) return false;
    void* moved = erealloc(pair->Ptr, bytes);
    if (!moved) return false;
    pair->Ptr = moved;
    pair->Handle = 1;
    return true;
}

bool ReallocateMem(size_t count, size_t size, MemHandleType* pair)
{
    if (ReallocateMemNoErr(count, size, pair)) return true;
    Error(ERR_NO_MEMORY_PROCESSING);
    return false;
}

float* AllocSpecMem(int points)
{
    float* block = points > 0 ? static_cast<float*>(ecalloc(static_cast<size_t>(points), 8)) : nullptr;
    if (!block) Error(ERR_SPECTRA_LIMIT);
    return block;
}

float* ReallocSpecMem(float* block, int points)
{
    float* moved = points > 0 ? static_cast<float*>(erealloc(block, static_cast<size_t>(points) * 8)) : nullptr;
    if (!moved) Error(ERR_SPECTRA_LIMIT);
    return moved;
}

void FreeSpecMem(float* block)
{
    if (!block) {
        ProgramError("FreeSpecMem");
        return;
    }
    efree(block);
}

uint32_t NextDataId() { return g_dataIdCounter++; }

ImageHeaderType* AllocateHeader()
{
    auto* record = static_cast<ImageHeaderType*>(emalloc(sizeof(ImageHeaderType)));
    if (!record) {
        Error(ERR_NO_MEMORY);
        return nullptr;
    }
    std::memset(record, 0, sizeof(ImageHeaderType));
    InitImageHeader(record, 0, 0);
    record->DataId = NextDataId();
    return record;
}

bool AllocateHitRecords(ImageHeaderType* record, int cx, int cy)
{
    if (!record || cx <= 0 || cy <= 0 || record->LMCHitDataPtr) return false;
    const size_t records = static_cast<size_t>(cx) * static_cast<size_t>(cy);
    auto* block = static_cast<uint8_t*>(ecalloc(records, kHitRecordBytes));
    if (!block) return false;
    const float largest = FLT_MAX;
    for (size_t i = 0; i < records; ++i) std::memcpy(block + i * kHitRecordBytes + 6, &largest, sizeof largest);
    record->LMCHitDataPtr = block;
    record->LMCHitDataCx = cx;
    record->LMCHitDataCy = cy;
    record->LMCThresholdHitDataPtr = 1;
    return true;
}

int AllocateHeaderMemory_LMCThresholdHitDataPtr(ImageHeaderType* record, int cx, int cy)
{
    if (!record) {
        ProgramError("AllocateHeaderMemory_LMCThresholdHitDataPtr im=NULL");
        return -1;
    }
    if (!IsSquareMappingImage(record)) {
        ProgramError("AllocateHeaderMemory_LMCThresholdHitDataPtr %d %d", cx, cy);
        return -1;
    }
    if (record->LMCHitDataPtr) {
        ProgramError("AllocateHeaderMemory_LMCThresholdHitDataPtr LMCThresholdHitDataPtr=%d",
                     static_cast<int>(record->LMCThresholdHitDataPtr));
        return -1;
    }
    if (!AllocateHitRecords(record, cx, cy)) {
        Error(ERR_NO_MEMORY_THRESHOLD);
        return -1;
    }
    return 0;
}

void FreeHitData(ImageHeaderType* record)
{
    if (!record) return;
    efree(record->LMCHitDataPtr);
    record->LMCHitDataPtr = nullptr;
    record->LMCHitDataCx = record->LMCHitDataCy = 0;
    record->LMCThresholdHitDataPtr = 0;
}

size_t LiveBlockCount() { return Registry().size(); }
size_t LiveBlockBytes() { return g_liveBytes; }

long HeapWalk()
{
    if (DebugMode) {
        Log("Free entries %d. Used entries %d\n", 0, static_cast<int>(Registry().size()));
        Log("Total free %ld KB, used %ld KB.\n", 0L, static_cast<long>(g_liveBytes / 1024));
    }
    return static_cast<long>(g_liveBytes);
}

void DumpHeap()
{
    for (const auto& [block, live] : Registry())
        Log("%6s block at %p of size %4.4X\n", "USED", reinterpret_cast<void*>(block), static_cast<unsigned>(live.bytes));
    Log(Registry().empty() ? "OK enpty heap\n" : "OK - heap end\n");
}

void FailAllocationsForTests(int count, int skip)
{
    g_failCount = count;
    g_failSkip = skip;
}

void ResetMemoryState()
{
    g_failCount = g_failSkip = 0;
    g_dataIdCounter = 0;
}
