// Golden frames: a synthetic ramp at 1024, 512, 256 and 128 points shown at 512 and 256 in each
// of the five display modes, compared row by row with the indices that the small reference of
// test_render_support.h computes from the documented rules.
#include "test_render_support.h"

#include "display/frame_commands.h"

#include <sstream>

namespace {

class RenderGoldenTest : public RenderTest {
protected:
    // A ramp along a diagonal, steep enough to wrap a few times: large and small steps
    // between neighbours, so that every branch of the relief and contour rules is taken.
    static uint16_t Ramp(int n, int x, int y)
    {
        return static_cast<uint16_t>((static_cast<uint32_t>(x * 5 + y * 3) * 65536u / static_cast<uint32_t>(n)) & 0xffff);
    }

    // Shows the ramp of n points at S in every mode; answers the description of the first
    // row that differs (or "" when all agree), with the rows compared.
    void Check(int n, int S)
    {
        ImageHeaderType* image = AddImage(n, n, [n](int x, int y) { return Ramp(n, x, y); });
        ASSERT_NE(image, nullptr);
        const render_ref::CodeFn code = [n](int x, int y) { return Ramp(n, x, y); };
        const int expectedFactor = n >= S ? n / S : -(S / n);
        for (int mode = 0; mode < 5; ++mode) {
            SCOPED_TRACE("mode " + std::to_string(mode) + ", " + std::to_string(n) + " at " + std::to_string(S));
            ClearFrameStore();
            FSState.ImageDisplaySize = S;
            FSState.DispMode = mode;
            DisplayImage(image, 1, 0);
            EXPECT_EQ(FSState.ImPntsX, expectedFactor);
            EXPECT_EQ(FSState.ImPntsY, expectedFactor);
            const std::vector<int> expected = render_ref::Expected(n, S, mode, code, image->ImageLUT);
            int rowsCompared = 0, differing = 0;
            std::string first;
            for (int y = 0; y < S; ++y) {
                ++rowsCompared;
                for (int x = 0; x < S; ++x) {
                    const int want = expected[static_cast<size_t>(y) * S + x];
                    if (fs.Index(x, y) != want) {
                        if (differing++ == 0) {
                            std::ostringstream s;
                            s << "row " << y << " x " << x << ": frame " << int(fs.Index(x, y)) << ", rule " << want;
                            first = s.str();
                        }
                    }
                }
            }
            EXPECT_EQ(rowsCompared, S);
            EXPECT_EQ(differing, 0) << first;
            // The rectangle is not one plain colour: the ramp shows.
            std::vector<int> inner(expected.begin() + S, expected.end() - S);
            std::sort(inner.begin(), inner.end());
            EXPECT_GT(std::unique(inner.begin(), inner.end()) - inner.begin(), 3);
            // Right of the rectangle nothing is written.
            if (S < 512) {
                EXPECT_EQ(fs.Index(S + 1, S / 2), 0);
            }
        }
        EXPECT_FALSE(LogHasProgramErrors());
    }
};

} // namespace

TEST_F(RenderGoldenTest, Ramp1024At512) { Check(1024, 512); }
TEST_F(RenderGoldenTest, Ramp512At512) { Check(512, 512); }
TEST_F(RenderGoldenTest, Ramp256At512) { Check(256, 512); }
TEST_F(RenderGoldenTest, Ramp128At512) { Check(128, 512); }
TEST_F(RenderGoldenTest, Ramp1024At256) { Check(1024, 256); }
TEST_F(RenderGoldenTest, Ramp512At256) { Check(512, 256); }
TEST_F(RenderGoldenTest, Ramp256At256) { Check(256, 256); }
TEST_F(RenderGoldenTest, Ramp128At256) { Check(128, 256); }
