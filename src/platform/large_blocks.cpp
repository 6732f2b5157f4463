#include "platform/large_blocks.h"

#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#define TAVRIN_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TAVRIN_ASAN 1
#endif
#endif
#ifdef TAVRIN_ASAN
#include <sanitizer/asan_interface.h>
#endif

namespace {

constexpr size_t kHugePageBytes = size_t{2} << 20;
#ifdef MADV_POPULATE_WRITE
constexpr int kPopulateWrite = MADV_POPULATE_WRITE;
#else
constexpr int kPopulateWrite = 23;   // the kernel's number of the advice, for older headers
#endif

size_t PageBytes()
{
    static const size_t page = [] {
        const long size = sysconf(_SC_PAGESIZE);
        return size > 0 ? static_cast<size_t>(size) : size_t{4096};
    }();
    return page;
}

// The mapped length of a block: whole pages.
size_t Mapped(size_t bytes)
{
    const size_t page = PageBytes();
    const size_t wanted = bytes ? bytes : 1;
    return (wanted + page - 1) / page * page;
}

// The bytes between the end of the block and the end of its last page are out of bounds for
// the address sanitizer, as the bytes past a malloc block are.
void GuardTail([[maybe_unused]] void* block, [[maybe_unused]] size_t bytes)
{
#ifdef TAVRIN_ASAN
    const size_t used = bytes ? bytes : 1;
    ASAN_POISON_MEMORY_REGION(static_cast<char*>(block) + used, Mapped(bytes) - used);
#endif
}

void ReleaseGuard([[maybe_unused]] void* block, [[maybe_unused]] size_t bytes)
{
#ifdef TAVRIN_ASAN
    ASAN_UNPOISON_MEMORY_REGION(block, Mapped(bytes));
#endif
}

} // namespace

void* MapLargeBlock(size_t bytes)
{
    if (bytes > SIZE_MAX - PageBytes() - kHugePageBytes) return nullptr;
    // Mapped with room to start on a huge-page boundary, the room then given back, so that
    // the kernel can back the block with huge pages: far fewer faults to bring in and far
    // fewer pages to give back.
    const size_t length = Mapped(bytes), room = length + kHugePageBytes;
    void* mapped = mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) return nullptr;
    const uintptr_t start = reinterpret_cast<uintptr_t>(mapped);
    const uintptr_t aligned = (start + kHugePageBytes - 1) & ~uintptr_t{kHugePageBytes - 1};
    if (aligned > start) munmap(mapped, aligned - start);
    if (start + room > aligned + length) munmap(reinterpret_cast<void*>(aligned + length), start + room - aligned - length);
    void* block = reinterpret_cast<void*>(aligned);
    madvise(block, length, MADV_HUGEPAGE);
    // Every page present now; a kernel without the populate advice gets each page touched.
    if (madvise(block, length, kPopulateWrite) != 0) {
        for (size_t at = 0; at < length; at += PageBytes()) static_cast<volatile char*>(block)[at] = 0;
    }
    GuardTail(block, bytes);
    return block;
}

void UnmapLargeBlock(void* block, size_t bytes)
{
    if (!block) return;
    ReleaseGuard(block, bytes);
    munmap(block, Mapped(bytes));
}

void* RemapLargeBlock(void* block, size_t oldBytes, size_t newBytes)
{
    if (!block) return MapLargeBlock(newBytes);
    if (newBytes > SIZE_MAX - PageBytes()) return nullptr;
    ReleaseGuard(block, oldBytes);
    void* moved = mremap(block, Mapped(oldBytes), Mapped(newBytes), MREMAP_MAYMOVE);
    if (moved == MAP_FAILED) {
        GuardTail(block, oldBytes);
        return nullptr;
    }
    GuardTail(moved, newBytes);
    return moved;
}
