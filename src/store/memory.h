// Memory and data buffers.
//
// A block is a handle pair: `Handle` (1 when the block was taken) and `Ptr`, its address; a
// pair is valid when both are non-zero. Allocation reports its own failure by number, and the
// caller only stops. Every block of the library is counted in a registry of live blocks, which
// serves the debug heap walk, the search of efree_check and the leak figure between start and
// end of a run.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tavrin/image_header.h"

struct MemHandleType {
    uint32_t Handle;
    void* Ptr;
};

bool AllocateMemNoErr(size_t count, size_t size, MemHandleType* pair);
bool AllocateMem(size_t count, size_t size, MemHandleType* pair);          // 32797 on failure
int FreeMem(uint32_t handle, void* ptr);                                    // answers 1
bool ReallocateMemNoErr(size_t count, size_t size, MemHandleType* pair);
bool ReallocateMem(size_t count, size_t size, MemHandleType* pair);        // 32798 on failure

// Sample blocks of spectra: points * 8 bytes (Y plane, then X plane).
float* AllocSpecMem(int points);                                            // 33284 on failure
float* ReallocSpecMem(float* block, int points);
void FreeSpecMem(float* block);

// A whole record, InitImageHeader(0, 0), with the next DataId. 32769 on failure.
ImageHeaderType* AllocateHeader();
// The next DataId: one counter for records and mapping sets, zero at load.
uint32_t NextDataId();

// Plain blocks of the library's own work. Null is ignored.
void* emalloc(size_t bytes);        // no report; null on failure
void* ecalloc(size_t count, size_t size);
void* erealloc(void* block, size_t bytes);
void efree(void* block);
void efree_check(void* block);      // frees only a block the registry knows

// Threshold hit data of a force-curve mapping: cx * cy records of 74 bytes. -1 or 0. Refuses
// (program error) a null record, a record that fails the square mapping test and a record that
// holds hit data already; 32831 when memory is out.
constexpr size_t kHitRecordBytes = 74;
int AllocateHeaderMemory_LMCThresholdHitDataPtr(ImageHeaderType* record, int cx, int cy);
// The records themselves, zeroed, each position the largest finite f32: no test of the record
// beyond a free pointer and a positive size, and no report. False when not taken.
bool AllocateHitRecords(ImageHeaderType* record, int cx, int cy);
void FreeHitData(ImageHeaderType* record);

// The debug walk: bytes in use (and, in debug mode, the counts in the log).
long HeapWalk();
void DumpHeap();
size_t LiveBlockCount();
size_t LiveBlockBytes();

// For tests: the next `count` allocations after `skip` successful ones fail.
void FailAllocationsForTests(int count, int skip = 0);

void ResetMemoryState();
