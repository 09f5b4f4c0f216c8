#include "Enc3.h"

#include <gtest/gtest.h>

#include <climits>

using morvane::Enc3;

namespace {

TEST(Enc3, ShiftCountsAtTheEdges) {
    struct Case {
        std::int32_t value;
        int count;
        std::int32_t expected;
    };
    const Case cases[] = {
        {0x12345678, 0, 0x12345678},
        {-5, 0, -5},
        {1, 31, INT_MIN},
        {3, 31, INT_MIN}, // bits past the top are lost
        {INT_MIN, -31, 1},
        {-1, -31, 1}, // right shifts fill with zeros, also for negatives
        {-1, -1, INT_MAX},
        {0x40000000, 1, INT_MIN},
        {-1, 32, 0},
        {-1, -32, 0},
        {1, 100, 0},
        {1, -100, 0},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Enc3::w32Shift(c.value, c.count), c.expected) << c.value << " by " << c.count;
}

TEST(Enc3, RotateCountsAtTheEdges) {
    const auto pattern = static_cast<std::int32_t>(0x80000001u);
    EXPECT_EQ(Enc3::w32Rotate(pattern, 0), pattern);
    EXPECT_EQ(Enc3::w32Rotate(pattern, 1), 3);
    EXPECT_EQ(Enc3::w32Rotate(pattern, -1), static_cast<std::int32_t>(0xC0000000u));
    // 31 to one side is 1 to the other.
    EXPECT_EQ(Enc3::w32Rotate(0x12345678, 31), Enc3::w32Rotate(0x12345678, -1));
    EXPECT_EQ(Enc3::w32Rotate(0x12345678, -31), Enc3::w32Rotate(0x12345678, 1));
    EXPECT_EQ(Enc3::w32Rotate(0x12345678, 32), 0);
    EXPECT_EQ(Enc3::w32Rotate(0x12345678, -32), 0);
}

TEST(Enc3, UnsignedAddWrapsAround) {
    EXPECT_EQ(Enc3::UnsignedAdd(INT_MAX, 1), INT_MIN);
    EXPECT_EQ(Enc3::UnsignedAdd(-1, 1), 0);
    EXPECT_EQ(Enc3::UnsignedAdd(INT_MIN, INT_MIN), 0);
    EXPECT_EQ(Enc3::UnsignedAdd(-1, -1), -2);
    EXPECT_EQ(Enc3::UnsignedAdd(123, 456), 579);
}

} // namespace
