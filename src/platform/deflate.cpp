#include "platform/deflate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <queue>

#include "platform/checksums.h"

namespace {

constexpr int32_t kWindowSize = 32768;
constexpr int32_t kMinMatch = 3;
constexpr int32_t kMaxMatch = 258;
constexpr int32_t kNiceMatch = 128;      // a match this long ends the search at once
constexpr int32_t kLazyLimit = 16;       // a match this long is taken without a lazy look
constexpr int32_t kGoodMatch = 8;        // holding a match this long, a quarter of the chain is tried
constexpr int32_t kMaxChain = 128;       // candidates tried at one position
constexpr int32_t kHashBits = 15;
constexpr size_t kBlockSymbols = 16384;
constexpr size_t kMaxStoredLength = 65535;

constexpr int32_t kLitLenCodes = 286;    // 0-255 bytes, 256 end of block, 257-285 lengths
constexpr int32_t kDistanceCodes = 30;
constexpr int32_t kCodeLengthCodes = 19;
constexpr int32_t kEndOfBlock = 256;
constexpr int32_t kMaxCodeBits = 15;
constexpr int32_t kMaxCodeLengthBits = 7;

constexpr uint16_t kLengthBase[29] = {3,  4,  5,  6,  7,  8,  9,  10, 11,  13,  15,  17,  19,  23, 27,
                                      31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr uint8_t kLengthExtra[29] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                      2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr uint16_t kDistanceBase[30] = {1,    2,    3,    4,    5,    7,    9,    13,    17,    25,
                                        33,   49,   65,   97,   129,  193,  257,  385,   513,   769,
                                        1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};
constexpr uint8_t kDistanceExtra[30] = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
                                        6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};
// The order in which the lengths of the code-length code are sent.
constexpr uint8_t kCodeLengthOrder[19] = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};

// One LZ77 symbol: a literal byte (distance 0) or a match of `value` bytes `distance` back.
struct Symbol {
    uint16_t value;
    uint16_t distance;
};

int32_t LengthCode(int32_t length)   // 0 to 28, for codes 257 to 285
{
    return static_cast<int32_t>(std::upper_bound(kLengthBase, kLengthBase + 29, length) - kLengthBase) - 1;
}

int32_t DistanceCode(int32_t distance)
{
    return static_cast<int32_t>(std::upper_bound(kDistanceBase, kDistanceBase + 30, distance) - kDistanceBase) - 1;
}

// Bits are packed from the low end of each byte, as deflate sends them.
struct BitWriter {
    std::vector<uint8_t>* out;
    uint64_t pending = 0;
    int32_t count = 0;

    void Put(uint32_t value, int32_t bits)
    {
        pending |= static_cast<uint64_t>(value & ((1u << bits) - 1u)) << count;
        count += bits;
        while (count >= 8) {
            out->push_back(static_cast<uint8_t>(pending));
            pending >>= 8;
            count -= 8;
        }
    }

    void AlignToByte()
    {
        if (count > 0) Put(0, 8 - count);
    }
};

// A prefix code: the length and the code (bit-reversed, ready to send) of each symbol.
struct HuffmanCode {
    std::vector<uint8_t> lengths;
    std::vector<uint16_t> codes;
};

// Code lengths for symbol frequencies, no longer than maxBits. The code is always complete:
// with fewer than two symbols in use, symbols 0 and 1 fill it up. When the Huffman tree is too
// deep, the frequencies are halved (rounding up) and the tree built again, which flattens it.
std::vector<uint8_t> CodeLengths(std::vector<uint32_t> frequencies, int32_t maxBits)
{
    size_t n = frequencies.size();
    std::vector<uint8_t> lengths(n, 0);
    size_t used =
        static_cast<size_t>(std::count_if(frequencies.begin(), frequencies.end(), [](uint32_t f) { return f > 0; }));
    if (used < 2) {
        for (size_t s = 0; s < 2 && used < 2; ++s) {
            if (frequencies[s] == 0) {
                frequencies[s] = 1;
                ++used;
            }
        }
    }
    for (;;) {
        // Nodes 0..n-1 are leaves; inner nodes follow. Ties go to the lower node number, so the
        // same input always gives the same code.
        std::vector<uint64_t> weight(frequencies.begin(), frequencies.end());
        std::vector<int32_t> parent(n, -1);
        using Entry = std::pair<uint64_t, int32_t>;
        std::priority_queue<Entry, std::vector<Entry>, std::greater<Entry>> queue;
        for (size_t s = 0; s < n; ++s)
            if (frequencies[s] > 0) queue.push({weight[s], static_cast<int32_t>(s)});
        while (queue.size() > 1) {
            Entry a = queue.top();
            queue.pop();
            Entry b = queue.top();
            queue.pop();
            int32_t node = static_cast<int32_t>(weight.size());
            weight.push_back(a.first + b.first);
            parent.push_back(-1);
            parent[static_cast<size_t>(a.second)] = node;
            parent[static_cast<size_t>(b.second)] = node;
            queue.push({a.first + b.first, node});
        }
        int32_t deepest = 0;
        for (size_t s = 0; s < n; ++s) {
            if (frequencies[s] == 0) continue;
            int32_t depth = 0;
            for (int32_t p = parent[s]; p >= 0; p = parent[static_cast<size_t>(p)]) ++depth;
            lengths[s] = static_cast<uint8_t>(std::min(depth, 255));
            deepest = std::max(deepest, depth);
        }
        if (deepest <= maxBits) return lengths;
        for (uint32_t& f : frequencies)
            if (f > 0) f = (f + 1) / 2;
    }
}

// Canonical codes for lengths: shorter codes first, and within one length in symbol order.
HuffmanCode MakeCode(std::vector<uint8_t> lengths)
{
    HuffmanCode code;
    code.codes.assign(lengths.size(), 0);
    std::array<uint32_t, kMaxCodeBits + 2> count{};
    for (uint8_t l : lengths) ++count[l];
    count[0] = 0;
    std::array<uint32_t, kMaxCodeBits + 2> next{};
    uint32_t value = 0;
    for (int32_t bits = 1; bits <= kMaxCodeBits; ++bits) {
        value = (value + count[static_cast<size_t>(bits - 1)]) << 1;
        next[static_cast<size_t>(bits)] = value;
    }
    for (size_t s = 0; s < lengths.size(); ++s) {
        int32_t bits = lengths[s];
        if (bits == 0) continue;
        uint32_t c = next[static_cast<size_t>(bits)]++;
        uint32_t reversed = 0;
        for (int32_t k = 0; k < bits; ++k) reversed |= ((c >> k) & 1u) << (bits - 1 - k);
        code.codes[s] = static_cast<uint16_t>(reversed);
    }
    code.lengths = std::move(lengths);
    return code;
}

HuffmanCode FixedLitLenCode()
{
    std::vector<uint8_t> lengths(288);
    for (size_t s = 0; s < 288; ++s) lengths[s] = s < 144 ? 8 : s < 256 ? 9 : s < 280 ? 7 : 8;
    return MakeCode(lengths);
}

HuffmanCode FixedDistanceCode()
{
    return MakeCode(std::vector<uint8_t>(30, 5));
}

// A code-length symbol (0-18) with the value of its extra bits.
struct LengthRun {
    uint8_t symbol;
    uint8_t extra;
};

// The code lengths of both codes as one sequence, with runs of zeros (17, 18) and repeats of
// the previous length (16) shortened.
std::vector<LengthRun> RunLengths(const std::vector<uint8_t>& lengths)
{
    std::vector<LengthRun> runs;
    size_t i = 0;
    while (i < lengths.size()) {
        uint8_t length = lengths[i];
        size_t run = 1;
        while (i + run < lengths.size() && lengths[i + run] == length) ++run;
        i += run;
        if (length == 0) {
            while (run >= 11) {
                size_t r = std::min<size_t>(run, 138);
                runs.push_back({18, static_cast<uint8_t>(r - 11)});
                run -= r;
            }
            if (run >= 3) {
                runs.push_back({17, static_cast<uint8_t>(run - 3)});
                run = 0;
            }
        } else {
            runs.push_back({length, 0});
            --run;
            while (run >= 3) {
                size_t r = std::min<size_t>(run, 6);
                runs.push_back({16, static_cast<uint8_t>(r - 3)});
                run -= r;
            }
        }
        for (; run > 0; --run) runs.push_back({length, 0});
    }
    return runs;
}

int32_t RunExtraBits(uint8_t symbol)
{
    return symbol == 16 ? 2 : symbol == 17 ? 3 : symbol == 18 ? 7 : 0;
}

// The block's symbols as frequencies of both alphabets (the end of block counted once).
void CountSymbols(const std::vector<Symbol>& symbols, std::vector<uint32_t>* litLen, std::vector<uint32_t>* distance)
{
    litLen->assign(kLitLenCodes, 0);
    distance->assign(kDistanceCodes, 0);
    for (const Symbol& s : symbols) {
        if (s.distance == 0) {
            ++(*litLen)[s.value];
        } else {
            ++(*litLen)[static_cast<size_t>(257 + LengthCode(s.value))];
            ++(*distance)[static_cast<size_t>(DistanceCode(s.distance))];
        }
    }
    ++(*litLen)[kEndOfBlock];
}

uint64_t SymbolBits(const std::vector<Symbol>& symbols, const HuffmanCode& litLen, const HuffmanCode& distance)
{
    uint64_t bits = litLen.lengths[kEndOfBlock];
    for (const Symbol& s : symbols) {
        if (s.distance == 0) {
            bits += litLen.lengths[s.value];
        } else {
            int32_t lc = LengthCode(s.value);
            int32_t dc = DistanceCode(s.distance);
            bits += litLen.lengths[static_cast<size_t>(257 + lc)] + kLengthExtra[lc];
            bits += distance.lengths[static_cast<size_t>(dc)] + kDistanceExtra[dc];
        }
    }
    return bits;
}

void WriteSymbols(BitWriter* out, const std::vector<Symbol>& symbols, const HuffmanCode& litLen,
                  const HuffmanCode& distance)
{
    for (const Symbol& s : symbols) {
        if (s.distance == 0) {
            out->Put(litLen.codes[s.value], litLen.lengths[s.value]);
            continue;
        }
        int32_t lc = LengthCode(s.value);
        size_t lenSymbol = static_cast<size_t>(257 + lc);
        out->Put(litLen.codes[lenSymbol], litLen.lengths[lenSymbol]);
        out->Put(static_cast<uint32_t>(s.value - kLengthBase[lc]), kLengthExtra[lc]);
        int32_t dc = DistanceCode(s.distance);
        out->Put(distance.codes[static_cast<size_t>(dc)], distance.lengths[static_cast<size_t>(dc)]);
        out->Put(static_cast<uint32_t>(s.distance - kDistanceBase[dc]), kDistanceExtra[dc]);
    }
    out->Put(litLen.codes[kEndOfBlock], litLen.lengths[kEndOfBlock]);
}

// The codes of a block with its own Huffman codes, and the header that describes them.
struct DynamicBlock {
    HuffmanCode litLen;
    HuffmanCode distance;
    HuffmanCode lengthCode;
    std::vector<LengthRun> runs;
    int32_t hlit = 0;
    int32_t hdist = 0;
    int32_t hclen = 0;

    uint64_t HeaderBits() const
    {
        uint64_t bits = 5 + 5 + 4 + 3 * static_cast<uint64_t>(hclen);
        for (const LengthRun& r : runs)
            bits += lengthCode.lengths[r.symbol] + static_cast<uint64_t>(RunExtraBits(r.symbol));
        return bits;
    }
};

DynamicBlock PlanDynamicBlock(const std::vector<Symbol>& symbols)
{
    DynamicBlock block;
    std::vector<uint32_t> litLenFrequencies, distanceFrequencies;
    CountSymbols(symbols, &litLenFrequencies, &distanceFrequencies);
    block.litLen = MakeCode(CodeLengths(litLenFrequencies, kMaxCodeBits));
    block.distance = MakeCode(CodeLengths(distanceFrequencies, kMaxCodeBits));
    block.hlit = kLitLenCodes;
    while (block.hlit > 257 && block.litLen.lengths[static_cast<size_t>(block.hlit - 1)] == 0) --block.hlit;
    block.hdist = kDistanceCodes;
    while (block.hdist > 1 && block.distance.lengths[static_cast<size_t>(block.hdist - 1)] == 0) --block.hdist;
    std::vector<uint8_t> all(block.litLen.lengths.begin(), block.litLen.lengths.begin() + block.hlit);
    all.insert(all.end(), block.distance.lengths.begin(), block.distance.lengths.begin() + block.hdist);
    block.runs = RunLengths(all);
    std::vector<uint32_t> runFrequencies(kCodeLengthCodes, 0);
    for (const LengthRun& r : block.runs) ++runFrequencies[r.symbol];
    block.lengthCode = MakeCode(CodeLengths(runFrequencies, kMaxCodeLengthBits));
    block.hclen = kCodeLengthCodes;
    while (block.hclen > 4 && block.lengthCode.lengths[kCodeLengthOrder[block.hclen - 1]] == 0) --block.hclen;
    return block;
}

void WriteDynamicHeader(BitWriter* out, const DynamicBlock& block)
{
    out->Put(static_cast<uint32_t>(block.hlit - 257), 5);
    out->Put(static_cast<uint32_t>(block.hdist - 1), 5);
    out->Put(static_cast<uint32_t>(block.hclen - 4), 4);
    for (int32_t i = 0; i < block.hclen; ++i) out->Put(block.lengthCode.lengths[kCodeLengthOrder[i]], 3);
    for (const LengthRun& r : block.runs) {
        out->Put(block.lengthCode.codes[r.symbol], block.lengthCode.lengths[r.symbol]);
        out->Put(r.extra, RunExtraBits(r.symbol));
    }
}

uint64_t StoredBits(const BitWriter& out, size_t bytes)
{
    size_t pieces = std::max<size_t>(1, (bytes + kMaxStoredLength - 1) / kMaxStoredLength);
    // The first header is followed by padding to a byte; each piece has 3 header bits, padding
    // to a byte and the two 16-bit lengths.
    uint64_t first = 3 + static_cast<uint64_t>((8 - (out.count + 3) % 8) % 8);
    return first + (pieces - 1) * 8 + pieces * 32 + 8 * static_cast<uint64_t>(bytes);
}

void WriteStored(BitWriter* out, const uint8_t* data, size_t size, bool final)
{
    size_t done = 0;
    do {
        size_t piece = std::min(size - done, kMaxStoredLength);
        bool last = done + piece == size;
        out->Put(final && last ? 1u : 0u, 1);
        out->Put(0, 2);
        out->AlignToByte();
        out->Put(static_cast<uint32_t>(piece), 16);
        out->Put(static_cast<uint32_t>(~piece) & 0xFFFFu, 16);
        for (size_t i = 0; i < piece; ++i) out->out->push_back(data[done + i]);
        done += piece;
    } while (done < size);
}

// Writes one block in its smallest form: the symbols stand for data[0, size).
void WriteBlock(BitWriter* out, const std::vector<Symbol>& symbols, const uint8_t* data, size_t size, bool final,
                DeflateBlockCounts* counts)
{
    static const HuffmanCode fixedLitLen = FixedLitLenCode();
    static const HuffmanCode fixedDistance = FixedDistanceCode();
    DynamicBlock dynamic = PlanDynamicBlock(symbols);
    uint64_t dynamicBits = 3 + dynamic.HeaderBits() + SymbolBits(symbols, dynamic.litLen, dynamic.distance);
    uint64_t fixedBits = 3 + SymbolBits(symbols, fixedLitLen, fixedDistance);
    uint64_t storedBits = StoredBits(*out, size);
    if (storedBits < fixedBits && storedBits < dynamicBits) {
        WriteStored(out, data, size, final);
        ++counts->stored;
    } else if (dynamicBits < fixedBits) {
        out->Put(final ? 1u : 0u, 1);
        out->Put(2, 2);
        WriteDynamicHeader(out, dynamic);
        WriteSymbols(out, symbols, dynamic.litLen, dynamic.distance);
        ++counts->dynamic;
    } else {
        out->Put(final ? 1u : 0u, 1);
        out->Put(1, 2);
        WriteSymbols(out, symbols, fixedLitLen, fixedDistance);
        ++counts->fixed;
    }
}

// The number of equal bytes at a and b, at most limit; eight at a time.
size_t MatchLength(const uint8_t* a, const uint8_t* b, size_t limit)
{
    size_t n = 0;
    while (n + 8 <= limit) {
        uint64_t x, y;
        std::memcpy(&x, a + n, 8);
        std::memcpy(&y, b + n, 8);
        if (x != y) {
            uint64_t diff = x ^ y;
            // The first differing byte in memory order.
            if constexpr (std::endian::native == std::endian::little)
                return n + static_cast<size_t>(std::countr_zero(diff)) / 8;
            else return n + static_cast<size_t>(std::countl_zero(diff)) / 8;
        }
        n += 8;
    }
    while (n < limit && a[n] == b[n]) ++n;
    return n;
}

// The LZ77 pass: finds matches through chains of earlier positions with the same three bytes.
class Matcher {
public:
    Matcher(const uint8_t* data, size_t size)
        : data_(data), size_(size), head_(size_t{1} << kHashBits, -1), previous_(kWindowSize, -1)
    {
    }

    // Enters position p into its chain (positions need three bytes to be entered).
    void Insert(size_t p)
    {
        if (p + kMinMatch > size_) return;
        uint32_t h = Hash(p);
        previous_[p % kWindowSize] = head_[h];
        head_[h] = static_cast<int64_t>(p);
    }

    // The longest match for position p, longer than `held`, among at most kMaxChain
    // candidates (a quarter of them when `held` is already good); length 0 if none reaches
    // kMinMatch.
    Symbol Find(size_t p, int32_t held) const
    {
        Symbol best{0, 0};
        if (p + kMinMatch > size_) return best;
        size_t limit = std::min<size_t>(kMaxMatch, size_ - p);
        size_t longest = static_cast<size_t>(std::max(held, kMinMatch - 1));
        int32_t tries = held >= kGoodMatch ? kMaxChain / 4 : kMaxChain;
        for (int64_t candidate = head_[Hash(p)]; tries > 0 && candidate >= 0; --tries) {
            size_t c = static_cast<size_t>(candidate);
            if (c >= p || p - c > static_cast<size_t>(kWindowSize)) break;
            if (longest < limit && data_[c + longest] == data_[p + longest]) {
                size_t length = MatchLength(data_ + c, data_ + p, limit);
                if (length > longest) {
                    longest = length;
                    best = {static_cast<uint16_t>(length), static_cast<uint16_t>(p - c)};
                    if (length >= limit || length >= static_cast<size_t>(kNiceMatch)) break;
                }
            }
            candidate = previous_[c % kWindowSize];
        }
        return best;
    }

private:
    uint32_t Hash(size_t p) const
    {
        uint32_t v =
            (static_cast<uint32_t>(data_[p]) << 16) | (static_cast<uint32_t>(data_[p + 1]) << 8) | data_[p + 2];
        return (v * 2654435761u) >> (32 - kHashBits);
    }

    const uint8_t* data_;
    size_t size_;
    std::vector<int64_t> head_;
    std::vector<int64_t> previous_;
};

} // namespace

std::vector<uint8_t> DeflateCompress(const uint8_t* data, size_t size, DeflateBlockCounts* counts)
{
    DeflateBlockCounts blockCounts{};
    std::vector<uint8_t> out;
    BitWriter writer{&out};
    if (data == nullptr) size = 0;
    Matcher matcher(data, size);
    std::vector<Symbol> symbols;
    symbols.reserve(kBlockSymbols);
    size_t blockStart = 0;   // first byte of the block being gathered
    size_t covered = 0;      // bytes covered by the symbols so far

    auto flushIfFull = [&]() {
        if (symbols.size() < kBlockSymbols) return;
        WriteBlock(&writer, symbols, data + blockStart, covered - blockStart, false, &blockCounts);
        symbols.clear();
        blockStart = covered;
    };
    auto literal = [&](size_t p) {
        symbols.push_back({data[p], 0});
        covered += 1;
        flushIfFull();
    };
    auto match = [&](Symbol m) {
        symbols.push_back(m);
        covered += m.value;
        flushIfFull();
    };
    auto insertRange = [&](size_t from, size_t to) {
        for (size_t q = from; q < to; ++q) matcher.Insert(q);
    };

    // Lazy matching: a match found at p is held back for one step, and given up for a
    // literal when p + 1 starts a longer one. A long match is taken at once.
    size_t p = 0;
    Symbol held{0, 0};   // a match that starts at p - 1
    while (p < size) {
        if (held.value >= kLazyLimit) {
            match(held);
            insertRange(p, p - 1 + held.value);
            p = p - 1 + held.value;
            held = {0, 0};
            continue;
        }
        Symbol found = matcher.Find(p, held.value);
        matcher.Insert(p);
        if (held.value > 0) {
            if (found.value > held.value) {
                literal(p - 1);
                held = found;
                p += 1;
            } else {
                match(held);
                insertRange(p + 1, p - 1 + held.value);
                p = p - 1 + held.value;
                held = {0, 0};
            }
        } else if (found.value > 0) {
            held = found;
            p += 1;
        } else {
            literal(p);
            p += 1;
        }
    }
    if (held.value > 0) match(held);
    WriteBlock(&writer, symbols, data + blockStart, covered - blockStart, true, &blockCounts);
    writer.AlignToByte();
    if (counts != nullptr) *counts = blockCounts;
    return out;
}

std::vector<uint8_t> ZlibCompress(const uint8_t* data, size_t size)
{
    std::vector<uint8_t> out = {0x78, 0x9C};
    std::vector<uint8_t> body = DeflateCompress(data, size);
    out.insert(out.end(), body.begin(), body.end());
    uint32_t adler = Adler32(data, data != nullptr ? size : 0);
    for (int32_t shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<uint8_t>(adler >> shift));
    return out;
}
