#include "files/delta_rows.h"
#include "store/memory.h"

#include <cstring>

namespace {

// value shifted left by s, kept to 16 bits; a shift of 16 or more pushes every bit out.
inline uint16_t Shifted(int value, int shift)
{
    if (shift >= 16) return 0;
    return static_cast<uint16_t>(static_cast<uint32_t>(value * (1 << shift)) & 0xFFFFu);
}

} // namespace

size_t DecodeDeltaRow(const uint8_t* bytes, size_t available, int nx, int shift, uint16_t* out)
{
    if (!bytes || !out || nx <= 0 || shift < 0 || available < 1) return 0;
    uint16_t code = Shifted(bytes[0], shift);
    out[0] = code;
    size_t p = 1;        // byte of the next symbol
    bool high = true;    // the next symbol is that byte's high nibble
    for (int i = 1; i < nx; ++i) {
        if (p >= available) return 0;
        const int d = high ? bytes[p] >> 4 : bytes[p] & 0x0F;
        if (d != 0) {
            code = static_cast<uint16_t>((code + Shifted(d - 8, shift)) & 0xFFFF);
            if (high) {
                high = false;
            } else {
                high = true;
                ++p;
            }
        } else if (high) {
            if (p + 1 >= available) return 0;
            const int value = ((bytes[p] & 0x0F) << 4) | (bytes[p + 1] >> 4);
            code = Shifted(value, shift);
            ++p;
            high = false;
        } else {
            if (p + 1 >= available) return 0;
            code = Shifted(bytes[p + 1], shift);
            p += 2;
            high = true;
        }
        out[i] = code;
    }
    return high ? p : p + 1;
}

bool DeltaBufferNeedsRefill(size_t bytesLeft, int nx, bool oldReader)
{
    const size_t wanted = static_cast<size_t>(nx) * 3 / 2 + (oldReader ? 1 : 0);
    return bytesLeft < wanted;
}

DeltaReadResult ReadDeltaRows(FileHandle file, int nx, int ny, int shift, bool oldReader, uint16_t* pixels,
                              long long* consumed)
{
    if (consumed) *consumed = 0;
    auto* buffer = static_cast<uint8_t*>(emalloc(kDeltaBufferBytes));
    if (!buffer) return DeltaReadResult::NoMemory;

    size_t fill = 0;        // bytes of the buffer that came from the file
    size_t pos = 0;         // start of the next row in the buffer
    bool ended = false;     // the file has given all it has
    bool failed = false;
    long long total = 0;
    int row = 0;
    while (row < ny && pos <= fill) {
        // Refill in steps while a whole row may not be there yet: the rest moves to the start.
        while (!ended && DeltaBufferNeedsRefill(fill - pos, nx, oldReader) && (pos > 0 || fill < kDeltaBufferBytes)) {
            if (pos > 0) {
                std::memmove(buffer, buffer + pos, fill - pos);
                fill -= pos;
                pos = 0;
            }
            const size_t room = kDeltaBufferBytes - fill;
            const size_t step = room < kDeltaRefillBytes ? room : kDeltaRefillBytes;
            const long long got = FileRead(file, buffer + fill, step);
            if (got < 0) {
                failed = true;
                ended = true;
                break;
            }
            fill += static_cast<size_t>(got);
            if (static_cast<size_t>(got) < step) ended = true;
        }
        const size_t used = DecodeDeltaRow(buffer + pos, fill - pos, nx, shift,
                                           pixels + static_cast<size_t>(row) * static_cast<size_t>(nx));
        if (used == 0) break;
        pos += used;
        total += static_cast<long long>(used);
        ++row;
    }
    efree(buffer);
    if (consumed) *consumed = total;
    if (row == ny) return DeltaReadResult::Complete;
    return failed ? DeltaReadResult::ReadFailed : DeltaReadResult::Short;
}
