// Row-delta packed pixels: one row by hand, the refill rule, and whole images through both
// readers with their two shift rules.
#include "test_tiff_support.h"
#include "files/delta_rows.h"
#include "files/tiff_read.h"
#include "host/globals.h"

#include <vector>

using namespace tifftest;

namespace {

std::vector<uint16_t> Decode(const std::vector<uint8_t>& bytes, int nx, int shift, size_t* length)
{
    std::vector<uint16_t> out(static_cast<size_t>(nx), 0xDEAD);
    *length = DecodeDeltaRow(bytes.data(), bytes.size(), nx, shift, out.data());
    return out;
}

} // namespace

TEST(DeltaRowTest, FirstCodeIsByteZeroShiftedThenNibblesAddDifferences)
{
    // 10, then 9: +1, 7: -1, F: +7, 8: +0, 1: -7.
    size_t length = 0;
    auto codes = Decode({0x0A, 0x97, 0xF8, 0x10}, 6, 0, &length);
    EXPECT_EQ(codes, (std::vector<uint16_t>{10, 11, 10, 17, 17, 10}));
    EXPECT_EQ(length, 4u);
}

TEST(DeltaRowTest, ShiftAppliesToFirstCodeAndToEachDifference)
{
    size_t length = 0;
    auto codes = Decode({0x0A, 0x9F}, 3, 4, &length);
    EXPECT_EQ(codes, (std::vector<uint16_t>{160, 176, 288}));
    EXPECT_EQ(length, 2u);
}

TEST(DeltaRowTest, LiteralInHighNibbleTakesLowNibbleAndNextHighNibble)
{
    // 0x0F 0x3C: literal 0xF3 = 243, then the low nibble C of the next byte: +4.
    size_t length = 0;
    auto codes = Decode({0x0A, 0x97, 0x0F, 0x3C}, 5, 0, &length);
    EXPECT_EQ(codes, (std::vector<uint16_t>{10, 11, 10, 243, 247}));
    EXPECT_EQ(length, 4u);
}

TEST(DeltaRowTest, LiteralInLowNibbleTakesTheWholeNextByte)
{
    // 0x80: +0, then literal in the low nibble: the whole byte 0xC8 = 200; then 9 of 0x9x: +1.
    size_t length = 0;
    auto codes = Decode({0x05, 0x80, 0xC8, 0x90}, 4, 0, &length);
    EXPECT_EQ(codes, (std::vector<uint16_t>{5, 5, 200, 201}));
    // The row ended on a high nibble: the next row starts at the next whole byte.
    EXPECT_EQ(length, 4u);
}

TEST(DeltaRowTest, LiteralsAreShiftedToo)
{
    size_t length = 0;
    auto codes = Decode({0x01, 0x0A, 0xB0, 0x7F}, 3, 8, &length);
    // 1 << 8; literal 0xAB << 8; literal (low nibble) 0x7F << 8.
    EXPECT_EQ(codes, (std::vector<uint16_t>{256, 0xAB00, 0x7F00}));
    EXPECT_EQ(length, 4u);
}

TEST(DeltaRowTest, CodesAreKeptTo16Bits)
{
    size_t length = 0;
    auto up = Decode({0xFF, 0xF0}, 2, 8, &length);
    EXPECT_EQ(up[1], static_cast<uint16_t>((0xFF00 + 7 * 256) & 0xFFFF));
    auto down = Decode({0x00, 0x10}, 2, 8, &length);
    EXPECT_EQ(down[1], static_cast<uint16_t>(0x10000 - 7 * 256));
}

TEST(DeltaRowTest, ShiftOf16OrMoreLeavesZeroCodes)
{
    size_t length = 0;
    auto codes = Decode({0xFF, 0xF0}, 2, 23, &length);
    EXPECT_EQ(codes, (std::vector<uint16_t>{0, 0}));
    EXPECT_EQ(length, 2u);
}

TEST(DeltaRowTest, RowThatNeedsMoreBytesThanAvailableAnswersZero)
{
    size_t length = 99;
    Decode({0x0A, 0x99}, 4, 0, &length);
    EXPECT_EQ(length, 0u);
    Decode({0x0A, 0x0F}, 3, 0, &length);   // high literal without its second byte
    EXPECT_EQ(length, 0u);
    Decode({0x0A, 0x90}, 3, 0, &length);   // low literal without its byte
    EXPECT_EQ(length, 0u);
    Decode({}, 1, 0, &length);
    EXPECT_EQ(length, 0u);
}

TEST(DeltaRowTest, RefillWhenFewerThanOneAndAHalfRowBytesAreLeftPlusOneInTheOldReader)
{
    // nx 256: the later reader wants 384 bytes, the reader of the oldest revisions 385.
    EXPECT_TRUE(DeltaBufferNeedsRefill(383, 256, false));
    EXPECT_FALSE(DeltaBufferNeedsRefill(384, 256, false));
    EXPECT_TRUE(DeltaBufferNeedsRefill(384, 256, true));
    EXPECT_FALSE(DeltaBufferNeedsRefill(385, 256, true));
}

class DeltaRowFileTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }

    // Row r of n codes, packed by hand: first byte r, then one symbol 9 (+1) for every other
    // code; row 3 carries a literal in a high nibble, row 4 one in a low nibble.
    static std::string PackedRow(int r, int n)
    {
        std::string row(1, static_cast<char>(r));
        std::vector<int> symbols(static_cast<size_t>(n - 1), 9);
        if (r == 3) {
            // code 1 becomes literal 0x5A: symbols 0, 5, A; codes 2 on go on with +1.
            symbols[0] = 0;
            symbols.insert(symbols.begin() + 1, {5, 0xA});
        }
        if (r == 4) {
            // code 1 +1, then a literal in the low nibble: 0, then the whole byte 0xC3.
            symbols[1] = 0;
        }
        std::string nibbles;
        size_t i = 0;
        std::string out = row;
        int pending = -1;
        auto push = [&](int nib) {
            if (pending < 0) {
                pending = nib;
            } else {
                out += static_cast<char>((pending << 4) | nib);
                pending = -1;
            }
        };
        for (; i < symbols.size(); ++i) {
            push(symbols[i]);
            if (r == 4 && i == 1) {
                // the literal byte follows the low nibble that held the 0
                out += static_cast<char>(0xC3);
            }
        }
        if (pending >= 0) out += static_cast<char>(pending << 4);
        return out;
    }

    static uint16_t Expected(int r, int x, int shift)
    {
        int value = r + x;
        if (r == 3 && x >= 1) value = 0x5A + (x - 1);
        if (r == 4 && x >= 2) value = 0xC3 + (x - 2);
        return static_cast<uint16_t>((value << shift) & 0xFFFF);
    }

    void ExpectImage(int n, int shift)
    {
        ASSERT_NE(CurrentItem, nullptr);
        ASSERT_NE(CurrentItem->PixData, nullptr);
        for (int y = 0; y < n; ++y)
            for (int x = 0; x < n; ++x)
                ASSERT_EQ(CurrentItem->PixData[y * n + x], Expected(y, x, shift)) << "x " << x << " y " << y;
    }
};

TEST_F(DeltaRowFileTest, HandPackedRowFourHasItsLiteralInALowNibble)
{
    // Check the hand packing itself: symbol 9, then 0 in the low nibble, then 0xC3.
    std::string row = PackedRow(4, 16);
    ASSERT_GE(row.size(), 3u);
    EXPECT_EQ(static_cast<uint8_t>(row[1]), 0x90);
    EXPECT_EQ(static_cast<uint8_t>(row[2]), 0xC3);
}

TEST_F(DeltaRowFileTest, LaterRevisionsShiftByCompressionMinusOne)
{
    const int n = 16;
    ImageHeaderType record = PlainRecord(n, 700, 9, 16);   // shift 8
    std::string body;
    for (int r = 0; r < n; ++r) body += PackedRow(r, n);
    WriteFileBytes(Path("delta700.img"), PlainFile(record, TAVRIN_HEADER_STORED_BYTES, body));
    ASSERT_EQ(LoadImageFile(Path("delta700.img").c_str(), 0, 1, 1), 0);
    ExpectImage(n, 8);
}

TEST_F(DeltaRowFileTest, OldestRevisionsShiftByCompressionPlusSeven)
{
    const int n = 16;
    ImageHeaderType record = PlainRecord(n, 103, 1, 0);   // shift 8
    std::string body;
    for (int r = 0; r < n; ++r) body += PackedRow(r, n);
    WriteFileBytes(Path("delta103.img"), PlainFile(record, 902, body));
    ASSERT_EQ(LoadImageFile(Path("delta103.img").c_str(), 0, 1, 1), 0);
    ExpectImage(n, 8);
}

TEST_F(DeltaRowFileTest, ManyRowsRefillTheBufferAcrossItsSteps)
{
    // 256 rows of 129 bytes: 33024 packed bytes, eight refills of the 8192-byte buffer.
    const int n = 256;
    ImageHeaderType record = PlainRecord(n, 700, 1, 16);   // shift 0
    std::string body;
    for (int r = 0; r < n; ++r) body += PackedRow(r, n);
    ASSERT_GT(body.size(), 4 * kDeltaBufferBytes);
    WriteFileBytes(Path("delta256.img"), PlainFile(record, TAVRIN_HEADER_STORED_BYTES, body));
    ASSERT_EQ(LoadImageFile(Path("delta256.img").c_str(), 0, 1, 1), 0);
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x) {
            int value = y + x;
            if (y == 3 && x >= 1) value = 0x5A + (x - 1);
            if (y == 4 && x >= 2) value = 0xC3 + (x - 2);
            ASSERT_EQ(CurrentItem->PixData[y * n + x], static_cast<uint16_t>(value & 0xFFFF)) << x << " " << y;
        }
}

TEST_F(DeltaRowFileTest, AnFFTBlockBehindPackedRowsIsFoundByTheBytesTheRowsTook)
{
    const int n = 16;
    ImageHeaderType record = PlainRecord(n, 700, 1, 16);
    record.FFTData = 1;
    std::string body;
    for (int r = 0; r < n; ++r) body += PackedRow(r, n);
    std::vector<float> fft(static_cast<size_t>(n) * n * 2);
    for (size_t i = 0; i < fft.size(); ++i) fft[i] = static_cast<float>(i) * 0.5f;
    body += std::string(reinterpret_cast<const char*>(fft.data()), fft.size() * 4);
    WriteFileBytes(Path("deltafft.img"), PlainFile(record, TAVRIN_HEADER_STORED_BYTES, body));
    ASSERT_EQ(LoadImageFile(Path("deltafft.img").c_str(), 0, 1, 1), 0);
    ASSERT_NE(CurrentItem->FFTDataPtr, nullptr);
    EXPECT_EQ(CurrentItem->FFTData, 1);
    EXPECT_EQ(CurrentItem->FFTDataPtr[0], 0.0f);
    EXPECT_EQ(CurrentItem->FFTDataPtr[511], 255.5f);
}

TEST_F(DeltaRowFileTest, MissingRowsAreDataFileTooShortAndTheListStaysAsItWas)
{
    const int n = 16;
    ImageHeaderType record = PlainRecord(n, 700, 1, 16);
    std::string body;
    for (int r = 0; r < n - 1; ++r) body += PackedRow(r, n);
    body += PackedRow(n - 1, n).substr(0, 3);
    WriteFileBytes(Path("cut.img"), PlainFile(record, TAVRIN_HEADER_STORED_BYTES, body));
    const size_t blocks = LiveBlockCount();
    EXPECT_EQ(LoadImageFile(Path("cut.img").c_str(), 0, 1, 1), 1);
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(LiveBlockCount(), blocks);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Data file too short");
}

TEST_F(DeltaRowFileTest, FailedDeltaBufferAllocationIsNotEnoughMemory)
{
    const int n = 16;
    ImageHeaderType record = PlainRecord(n, 700, 1, 16);
    std::string body;
    for (int r = 0; r < n; ++r) body += PackedRow(r, n);
    WriteFileBytes(Path("mem.img"), PlainFile(record, TAVRIN_HEADER_STORED_BYTES, body));
    const size_t blocks = LiveBlockCount();
    // Scratch record and pixel block succeed; the 8192-byte buffer fails.
    FailAllocationsForTests(1, 2);
    EXPECT_EQ(LoadImageFile(Path("mem.img").c_str(), 0, 1, 1), 1);
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(LiveBlockCount(), blocks);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Not enough memory");
}

TEST_F(DeltaRowFileTest, NegativeShiftIsNoPackingAndGivesInvalidHeader)
{
    const int n = 16;
    ImageHeaderType record = PlainRecord(n, 700, -3, 16);
    WriteFileBytes(Path("neg.img"), PlainFile(record, TAVRIN_HEADER_STORED_BYTES, std::string(4096, '\x11')));
    EXPECT_EQ(LoadImageFile(Path("neg.img").c_str(), 0, 1, 1), 1);
    EXPECT_EQ(FirstItem, nullptr);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Invalid header");
}
