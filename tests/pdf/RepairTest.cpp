// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/Engine.h"
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

#include <mupdf/pdf.h>

namespace pdf {
namespace {

/// A stream over bytes that can be told to fail at the next return to its beginning, which is where a repair
/// starts to read.
struct Source
{
    QByteArray bytes;
    bool failsAtBeginning = false;
    bool hasFailed = false;
};

int next(fz_context* ctx, fz_stream* stream, std::size_t)
{
    auto* source = static_cast<Source*>(stream->state);
    if (source->failsAtBeginning && stream->pos == 0) {
        source->hasFailed = true;
        fz_throw(ctx, FZ_ERROR_TRYLATER, "stopped");
    }
    auto* data = reinterpret_cast<unsigned char*>(source->bytes.data());
    if (stream->pos >= source->bytes.size())
        return EOF;
    stream->rp = data + stream->pos;
    stream->wp = stream->rp + 1;
    ++stream->pos;
    return *stream->rp++;
}

void seek(fz_context*, fz_stream* stream, int64_t offset, int whence)
{
    auto* source = static_cast<Source*>(stream->state);
    stream->pos = whence == SEEK_END ? source->bytes.size() + offset : offset;
    stream->rp = nullptr;
    stream->wp = nullptr;
}

/// A document whose table is wrong about the object of its second page.
class RepairTest : public testing::Test
{
protected:
    RepairTest()
    {
        PDFWriter writer;
        writer.addPage({});
        m_second = writer.addPage({}, "/Marked 1");
        m_source.bytes = writer.bytes();
        const QByteArray number = QByteArray::number(m_second);
        const QByteArray offset = QByteArray::number(m_source.bytes.lastIndexOf(number + " 0 obj"));
        m_source.bytes.replace(offset.rightJustified(10, '0'), "0000000020");

        fz_context* ctx = engine::context();
        fz_stream* stream = fz_new_stream(ctx, &m_source, next, nullptr);
        stream->seek = seek;
        m_document = pdf_open_document_with_stream(ctx, stream);
        fz_drop_stream(ctx, stream);
    }

    ~RepairTest() override { pdf_drop_document(engine::context(), m_document); }

    /// An entry of the catalog.
    int mark()
    {
        fz_context* ctx = engine::context();
        return pdf_to_int(ctx, pdf_dict_getp(ctx, pdf_trailer(ctx, m_document), "Root/Mark"));
    }

    void setMark(int value)
    {
        fz_context* ctx = engine::context();
        pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, m_document), PDF_NAME(Root));
        pdf_dict_puts_drop(ctx, root, "Mark", pdf_new_int(ctx, value));
    }

    /// Whether the second page's object can be read, which takes a repair.
    bool readSecond()
    {
        bool isRead = false;
        CookieScope scope{Cancellation()};
        const auto error = engine::attempt(scope, [&](fz_context* ctx) {
            pdf_obj* object = pdf_load_object(ctx, m_document, m_second);
            isRead = pdf_to_int(ctx, pdf_dict_gets(ctx, object, "Marked")) == 1;
            pdf_drop_obj(ctx, object);
        });
        return !error && isRead;
    }

    Source m_source;
    int m_second = 0;
    pdf_document* m_document = nullptr;
};

TEST_F(RepairTest, KeepsChangesMadeBefore)
{
    setMark(7);
    ASSERT_FALSE(pdf_was_repaired(engine::context(), m_document));
    EXPECT_TRUE(readSecond());
    ASSERT_TRUE(pdf_was_repaired(engine::context(), m_document));
    EXPECT_EQ(mark(), 7);
}

TEST_F(RepairTest, LeavesTheDocumentAsItWasWhenItIsStopped)
{
    setMark(7);
    m_source.failsAtBeginning = true;
    EXPECT_FALSE(readSecond());
    ASSERT_TRUE(m_source.hasFailed);
    EXPECT_EQ(mark(), 7);
    setMark(8);
    EXPECT_EQ(mark(), 8);
}

TEST_F(RepairTest, IsDoneLaterWhenItWasStopped)
{
    setMark(7);
    m_source.failsAtBeginning = true;
    ASSERT_FALSE(readSecond());
    m_source.failsAtBeginning = false;
    EXPECT_TRUE(readSecond());
    EXPECT_EQ(mark(), 7);
}

} // namespace
} // namespace pdf
