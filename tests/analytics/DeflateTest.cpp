// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/Deflate.h"

#include "analytics/Inflate.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

TEST(DeflateTest, MakesABareStream)
{
    EXPECT_EQ(deflated(QByteArray()), QByteArray("\x03\x00", 2));
    const QByteArray text(10'000, 'a');
    const QByteArray stream = deflated(text).value();
    EXPECT_LT(stream.size(), 100);
    EXPECT_NE(stream.first(2), QByteArray("\x1f\x8b")) << "a gzip header";
    EXPECT_NE(stream.first(1), QByteArray("\x78")) << "a zlib header";
    EXPECT_EQ(inflated(stream), text);
}

TEST(DeflateTest, KeepsBytesThatCannotBePacked)
{
    QByteArray noise;
    quint32 state = 1;
    for (int i = 0; i < 100'000; ++i) {
        state = state * 1664525U + 1013904223U;
        noise += static_cast<char>(state >> 24U);
    }
    EXPECT_EQ(inflated(deflated(noise).value()), noise);
}

} // namespace
} // namespace quillo
