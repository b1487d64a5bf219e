// SPDX-License-Identifier: AGPL-3.0-or-later
#include "FailingMemory.h"
#include "pdf/CookieScope.h"
#include "pdf/Engine.h"
#include "pdf/PDFAnnotation.h"
#include "pdf/PDFDisplayList.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFFormField.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

#include <QImage>

#include <chrono>
#include <functional>
#include <future>
#include <stdexcept>
#include <thread>
#include <utility>

// C++ exceptions where MuPDF is at work.
namespace pdf {
namespace {

using namespace std::chrono_literals;
using Code = PDFError::Code;

/// The slots of MuPDF's jump stack that are in use on this thread.
std::ptrdiff_t jumpDepth()
{
    const fz_context* ctx = engine::context();
    return ctx->error.top - ctx->error.stack_base;
}

/// Whether another thread gets each of MuPDF's locks.
bool areLocksFree()
{
    std::packaged_task<void()> task([] {
        fz_context* ctx = engine::context();
        for (int lock = 0; lock < FZ_LOCK_MAX; ++lock) {
            ctx->locks.lock(ctx->locks.user, lock);
            ctx->locks.unlock(ctx->locks.user, lock);
        }
    });
    auto done = task.get_future();
    // One that waits for ever must not be waited for.
    std::thread(std::move(task)).detach();
    return done.wait_for(20s) == std::future_status::ready;
}

/// Memory in use besides what is kept for reuse.
std::size_t ownMemory()
{
    fz_context* ctx = engine::context();
    fz_empty_store(ctx);
    fz_purge_glyph_cache(ctx);
    return engine::memoryInUse();
}

/// What comes of work that throws while it holds a buffer.
template <typename Work>
std::optional<PDFError> attemptWithBuffer(Work work)
{
    CookieScope scope{Cancellation()};
    return engine::attempt(scope, [&](fz_context* ctx) {
        fz_buffer* buffer = fz_new_buffer(ctx, 100'000);
        fz_try(ctx)
        {
            work(ctx, buffer);
        }
        fz_always(ctx)
        {
            fz_drop_buffer(ctx, buffer);
        }
        fz_catch(ctx)
        {
            fz_rethrow(ctx);
        }
    });
}

[[noreturn]] void throwBadAlloc(fz_context* ctx)
{
    engine::translated(ctx, [] { throw std::bad_alloc(); });
    std::abort();
}

class ExceptionsTest : public testing::Test
{
protected:
    void TearDown() override
    {
        EXPECT_EQ(jumpDepth(), 0);
        EXPECT_EQ(ownMemory(), m_memory);
        EXPECT_TRUE(areLocksFree());
    }

    const std::size_t m_memory = ownMemory();
};

TEST_F(ExceptionsTest, LeaveNothingOnTheJumpStack)
{
    for (int i = 0; i < 3; ++i) {
        CookieScope scope{Cancellation()};
        const auto error = engine::attempt(scope, [](fz_context*) { throw std::bad_alloc(); });
        ASSERT_TRUE(error);
        EXPECT_EQ(error->code, Code::limitExceeded);
        EXPECT_EQ(jumpDepth(), 0);
    }
}

TEST_F(ExceptionsTest, OfAnyKindBecomeErrors)
{
    const auto errorOf = [](auto exception) {
        CookieScope scope{Cancellation()};
        return engine::attempt(scope, [&](fz_context*) { throw exception; });
    };
    EXPECT_EQ(errorOf(std::length_error("too long"))->code, Code::limitExceeded);
    EXPECT_EQ(errorOf(std::runtime_error("what nobody thought of"))->code, Code::damaged);
    EXPECT_EQ(errorOf(1)->code, Code::damaged);
}

TEST_F(ExceptionsTest, ThatAreTranslatedLetMuPDFGiveBackWhatItHolds)
{
    const auto error = attemptWithBuffer([](fz_context* ctx, fz_buffer*) { throwBadAlloc(ctx); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, Code::limitExceeded);
}

TEST_F(ExceptionsTest, LeaveTheBlocksThatTheySkip)
{
    const auto error = attemptWithBuffer([](fz_context* ctx, fz_buffer*) {
        engine::translated(ctx, [&] {
            fz_try(ctx)
            {
                throw std::bad_alloc();
            }
            fz_catch(ctx)
            {}
        });
    });
    EXPECT_TRUE(error);
}

TEST_F(ExceptionsTest, FailTheOperationEvenWhereMuPDFGoesOn)
{
    CookieScope scope{Cancellation()};
    const auto error = engine::attempt(scope, [](fz_context* ctx) {
        fz_try(ctx)
        {
            throwBadAlloc(ctx);
        }
        fz_catch(ctx)
        {}
    });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, Code::limitExceeded);
}

TEST_F(ExceptionsTest, ComeOutOfAStream)
{
    const auto error = attemptWithBuffer([](fz_context* ctx, fz_buffer*) {
        const auto next = [](fz_context* inner, fz_stream*, std::size_t) -> int { throwBadAlloc(inner); };
        fz_stream* stream = fz_new_stream(ctx, nullptr, next, nullptr);
        fz_try(ctx)
        {
            fz_drop_buffer(ctx, fz_read_all(ctx, stream, 1000));
        }
        fz_always(ctx)
        {
            fz_drop_stream(ctx, stream);
        }
        fz_catch(ctx)
        {
            fz_rethrow(ctx);
        }
    });
    EXPECT_TRUE(error);
}

TEST_F(ExceptionsTest, ComeOutOfAnOutput)
{
    const auto error = attemptWithBuffer([](fz_context* ctx, fz_buffer*) {
        const auto write = [](fz_context* inner, void*, const void*, std::size_t) { throwBadAlloc(inner); };
        fz_output* out = fz_new_output(ctx, 16, nullptr, write, nullptr, nullptr);
        fz_try(ctx)
        {
            fz_write_string(ctx, out, "more than there is room for");
        }
        fz_always(ctx)
        {
            fz_drop_output(ctx, out);
        }
        fz_catch(ctx)
        {
            fz_rethrow(ctx);
        }
    });
    EXPECT_TRUE(error);
}

TEST_F(ExceptionsTest, ComeOutOfADevice)
{
    const auto error = attemptWithBuffer([](fz_context* ctx, fz_buffer*) {
        fz_device* device = fz_new_derived_device(ctx, fz_device);
        device->pop_clip = [](fz_context* inner, fz_device*) { throwBadAlloc(inner); };
        fz_try(ctx)
        {
            fz_pop_clip(ctx, device);
        }
        fz_always(ctx)
        {
            fz_drop_device(ctx, device);
        }
        fz_catch(ctx)
        {
            fz_rethrow(ctx);
        }
    });
    EXPECT_TRUE(error);
}

/// Two pages with text, links and fields.
PDFWriter someDocument()
{
    PDFWriter writer;
    QByteArray annotations;
    const auto add = [&](const QByteArray& annotation) {
        const int number = writer.add("<</Type/Annot" + annotation + ">>");
        annotations += QByteArray::number(number) + " 0 R ";
        return QByteArray::number(number) + " 0 R ";
    };
    add("/Subtype/Link/Rect[10 10 90 30]/A<</S/URI/URI(https://program.example/a)>>");
    add("/Subtype/Link/Rect[10 40 90 60]/Dest[1/Fit]");
    add("/Subtype/Square/Rect[100 100 200 200]/C[1 0 0]/F 4");
    QByteArray fields =
        add("/Subtype/Widget/FT/Tx/T(name)/V(Ada)/Rect[10 350 200 380]/F 4/DA(/Helv 12 Tf 0 g)");
    fields +=
        add("/Subtype/Widget/FT/Ch/Ff 131072/Opt[(one)(two)]/T(choice)/V(two)/Rect[10 300 200 330]/F 4");
    writer.setCatalog("/AcroForm<</Fields[" + fields + "]/DA(/Helv 12 Tf 0 g)>>");
    writer.addPage(showText(72, 700, "The first page has words"), "/Annots[" + annotations + "]");
    writer.addPage(showText(72, 700, "The second page has others"));
    return writer;
}

/// What the engine is asked for, with an answer.
struct Operation
{
    const char* name;
    std::function<bool(PDFDocument&)> isDone;
};

/// Fails each of the operation's requests for memory, one after another.
class MemoryShortageTest : public testing::TestWithParam<Operation>
{
protected:
    static bool succeeds(PDFDocument& document)
    {
        try {
            return GetParam().isDone(document);
        } catch (const std::bad_alloc&) {
            // Outside of MuPDF an exception is an exception.
            return false;
        }
    }

    /// The number of requests that were made to fail.
    static int failEach(PDFDocument& document)
    {
        for (int request = 1;; ++request) {
            const FailingMemory memory(request);
            succeeds(document);
            EXPECT_EQ(jumpDepth(), 0) << "after request " << request;
            if (!memory.hasFailed() || testing::Test::HasFailure())
                return request - 1;
        }
    }

    std::shared_ptr<PDFDocument> open() const
    {
        return *PDFDocument::open(m_folder.path(QStringLiteral("document.pdf")));
    }

    void SetUp() override { m_folder.write(QStringLiteral("document.pdf"), someDocument().bytes()); }

    const TestFolder m_folder;
};

TEST_P(MemoryShortageTest, LeavesTheEngineAsItWas)
{
    // What is made once for the whole process.
    ASSERT_TRUE(succeeds(*open()));
    const std::size_t before = ownMemory();
    {
        const auto document = open();
        EXPECT_GT(failEach(*document), 0);
        EXPECT_TRUE(succeeds(*document)) << "the document is of no use any more";
    }
    EXPECT_EQ(ownMemory(), before);
    EXPECT_TRUE(areLocksFree());
}

/// A form field that is placed while there is no memory for it.
class PlacingInMemoryShortageTest : public testing::Test
{
protected:
    void SetUp() override { m_folder.write(QStringLiteral("document.pdf"), someDocument().bytes()); }

    const TestFolder m_folder;
};

TEST_F(PlacingInMemoryShortageTest, LosesNothingThatWaits)
{
    bool hasFailed = true;
    int request = 0;
    while (hasFailed && !HasFailure()) {
        const auto document = *PDFDocument::open(m_folder.path(QStringLiteral("document.pdf")));
        const auto page = document->page(1);
        const auto first =
            std::make_shared<PDFAnnotation>(QRectF(10, 10, 90, 20), PDFAnnotation::Subtype::widget);
        const auto second =
            std::make_shared<PDFAnnotation>(QRectF(10, 40, 90, 20), PDFAnnotation::Subtype::widget);
        first->setWidgetStringValue(QStringLiteral("Ada"));
        second->setWidgetStringValue(QStringLiteral("Grace"));
        page->addAnnotation(first);
        page->addAnnotation(second);
        {
            const FailingMemory memory(++request);
            try {
                static_cast<void>(page->formFields());
            } catch (const std::bad_alloc&) {
                // Outside of MuPDF an exception is an exception.
            }
            hasFailed = memory.hasFailed();
        }
        const auto annotations = page->annotations();
        ASSERT_EQ(annotations.size(), 2u) << "after request " << request;
        EXPECT_EQ(annotations[0], first) << "after request " << request;
        EXPECT_EQ(annotations[1], second) << "after request " << request;
        EXPECT_EQ(page->string(), QStringLiteral("The second page has others\nGrace\nAda\n")) << request;
        EXPECT_EQ(jumpDepth(), 0);
    }
    EXPECT_GT(request, 50);
}

/// Cannot be drawn at first.
class UndrawableText : public PDFAnnotation
{
public:
    using PDFAnnotation::PDFAnnotation;

protected:
    void draw(QPainter& painter, const QSizeF& size) const override
    {
        if (!std::exchange(m_hasBeenDrawn, true))
            throw std::bad_alloc();
        PDFAnnotation::draw(painter, size);
    }

private:
    mutable bool m_hasBeenDrawn = false;
};

TEST_F(PlacingInMemoryShortageTest, DrawsLaterWhatItCannotDraw)
{
    const auto document = *PDFDocument::open(m_folder.path(QStringLiteral("document.pdf")));
    const auto page = document->page(1);
    const auto first =
        std::make_shared<UndrawableText>(QRectF(10, 10, 90, 20), PDFAnnotation::Subtype::freeText);
    const auto second =
        std::make_shared<PDFAnnotation>(QRectF(10, 40, 90, 20), PDFAnnotation::Subtype::freeText);
    first->setContents(QStringLiteral("first"));
    second->setContents(QStringLiteral("second"));
    page->addAnnotation(first);
    page->addAnnotation(second);
    const auto list = page->annotationDisplayList();
    ASSERT_FALSE(list);
    EXPECT_EQ(list.error().code, Code::limitExceeded);
    EXPECT_EQ(page->annotations(), (std::vector<std::shared_ptr<PDFAnnotation>>{first, second}));
    EXPECT_EQ(page->string(), QStringLiteral("The second page has others\nsecond\nfirst\n"));
}

bool isDrawn(const Result<PDFDisplayList>& list)
{
    QImage image(100, 100, QImage::Format_RGB32);
    image.fill(Qt::white);
    return list && list->draw(image, {}, 0.1);
}

QString targetBeside(const PDFDocument& document)
{
    return document.documentURL().toLocalFile() + QStringLiteral(".written.pdf");
}

const Operation operations[] = {
    {"Opening",
     [](PDFDocument& document) {
         return static_cast<bool>(PDFDocument::open(document.documentURL().toLocalFile()));
     }},
    {"Pages", [](PDFDocument& document) { return document.page(0) && document.page(1); }},
    {"Text",
     [](PDFDocument& document) {
         const auto page = document.page(1);
         return page && page->string() == QStringLiteral("The second page has others\n");
     }},
    {"Links",
     [](PDFDocument& document) {
         const auto page = document.page(0);
         return page && page->links().size() == 2;
     }},
    {"Content",
     [](PDFDocument& document) {
         const auto page = document.page(0);
         return page && isDrawn(page->contentDisplayList());
     }},
    {"AnnotationPictures",
     [](PDFDocument& document) {
         const auto page = document.page(0);
         return page && isDrawn(page->annotationDisplayList());
     }},
    {"Annotations",
     [](PDFDocument& document) {
         const auto page = document.page(0);
         return page && page->annotations().size() == 5;
     }},
    {"Fields",
     [](PDFDocument& document) {
         const auto page = document.page(0);
         if (!page)
             return false;
         const auto fields = page->formFields();
         return fields && fields->size() == 2 && fields->front().text == QStringLiteral("Ada");
     }},
    {"Filling",
     [](PDFDocument& document) {
         const auto page = document.page(0);
         const auto fields = page ? page->formFields() : std::vector<PDFFormField>();
         if (!fields || fields->empty())
             return false;
         // Another value each time, so that there is something to write.
         const QString text =
             fields->front().text == QStringLiteral("Ada") ? QStringLiteral("Grace") : QStringLiteral("Ada");
         return static_cast<bool>(document.setFormValue(fields->front().widget, {text}));
     }},
    {"Turning",
     [](PDFDocument& document) {
         const auto page = document.page(1);
         return page && page->setRotation(page->rotation() + 90);
     }},
    {"Saving",
     [](PDFDocument& document) { return static_cast<bool>(document.write(targetBeside(document))); }},
    {"Printing",
     [](PDFDocument& document) {
         PrintLayout layout;
         layout.pages = {0, 1};
         const auto outcome = document.writePrintable(targetBeside(document), layout);
         return outcome && outcome->damagedPages.empty();
     }},
};

INSTANTIATE_TEST_SUITE_P(Each, MemoryShortageTest, testing::ValuesIn(operations), [](const auto& parameter) {
    return parameter.param.name;
});

} // namespace
} // namespace pdf
