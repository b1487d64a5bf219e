// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/CookieScope.h"
#include "pdf/Limits.h"

#include <mupdf/fitz.h>

#include <cstdio>
#include <jpeglib.h>
#include <openjpeg.h>

// MuPDF calls decoders that neither look at the cookie nor take their memory from its allocator. The linker
// leads the calls listed here (--wrap, see cmake/MuPDF.cmake) through this file, which puts the engine's
// limits around each; the names with __real_ are the functions themselves.
//
// A few kilobytes can expand to terabytes when filters are chained, and a lexer that skips white space reads
// them all. A filter's output therefore passes through a stream that fails once the operation is stopped.
namespace pdf {
namespace {

/// Hands the other stream's bytes on without copying them.
int next(fz_context* ctx, fz_stream* stream, std::size_t wanted)
{
    if (const CookieScope* scope = CookieScope::current(); scope && scope->isStopped())
        fz_throw(ctx, FZ_ERROR_TRYLATER, "the operation was stopped");
    auto* source = static_cast<fz_stream*>(stream->state);
    const std::size_t size = fz_available(ctx, source, wanted);
    if (size == 0)
        return EOF;
    stream->rp = source->rp;
    stream->wp = source->rp + size;
    stream->pos += static_cast<int64_t>(size);
    source->rp = stream->wp;
    return *stream->rp++;
}

void drop(fz_context* ctx, void* state)
{
    fz_drop_stream(ctx, static_cast<fz_stream*>(state));
}

/// Takes the stream in any case; may throw as MuPDF does.
fz_stream* stoppable(fz_context* ctx, fz_stream* source)
{
    // A stream that cannot be made drops its state.
    return fz_new_stream(ctx, source, next, drop);
}

void ignoreMessage(j_common_ptr)
{}

} // namespace

extern "C" {

using FlateFunction = fz_stream*(fz_context*, fz_stream*, int);
FlateFunction realOpenFlate __asm__("__real_fz_open_flated");
FlateFunction openFlate __asm__("__wrap_fz_open_flated");

fz_stream* openFlate(fz_context* ctx, fz_stream* chain, int windowBits)
{
    return stoppable(ctx, realOpenFlate(ctx, chain, windowBits));
}

using LZWFunction = fz_stream*(fz_context*, fz_stream*, int, int, int, int);
LZWFunction realOpenLZW __asm__("__real_fz_open_lzwd");
LZWFunction openLZW __asm__("__wrap_fz_open_lzwd");

fz_stream*
openLZW(fz_context* ctx, fz_stream* chain, int earlyChange, int minBits, int reverseBits, int oldTIFF)
{
    return stoppable(ctx, realOpenLZW(ctx, chain, earlyChange, minBits, reverseBits, oldTIFF));
}

using RunLengthFunction = fz_stream*(fz_context*, fz_stream*);
RunLengthFunction realOpenRunLength __asm__("__real_fz_open_rld");
RunLengthFunction openRunLength __asm__("__wrap_fz_open_rld");

fz_stream* openRunLength(fz_context* ctx, fz_stream* chain)
{
    return stoppable(ctx, realOpenRunLength(ctx, chain));
}

using DCTFunction = fz_stream*(fz_context*, fz_stream*, int, int, fz_stream*);
DCTFunction realOpenDCT __asm__("__real_fz_open_dctd");
DCTFunction openDCT __asm__("__wrap_fz_open_dctd");

fz_stream* openDCT(fz_context* ctx, fz_stream* chain, int colorTransform, int log2Factor, fz_stream* tables)
{
    return stoppable(ctx, realOpenDCT(ctx, chain, colorTransform, log2Factor, tables));
}

// A mesh of a few kilobytes can cover the page ten thousand times.
using ProcessShadeFunction =
    void(fz_context*, fz_shade*, fz_matrix, fz_rect, fz_shade_prepare_fn*, fz_shade_process_fn*, void*);
ProcessShadeFunction realProcessShade __asm__("__real_fz_process_shade");
ProcessShadeFunction processShade __asm__("__wrap_fz_process_shade");

struct ShadeProcess
{
    fz_shade_prepare_fn* prepare;
    fz_shade_process_fn* process;
    void* argument;
};

void processShade(
    fz_context* ctx, fz_shade* shade, fz_matrix ctm, fz_rect scissor, fz_shade_prepare_fn* prepare,
    fz_shade_process_fn* process, void* argument)
{
    ShadeProcess inner = {prepare, process, argument};
    realProcessShade(
        ctx, shade, ctm, scissor,
        [](fz_context* innerCtx, void* state, fz_vertex* vertex, const float* color) {
            auto* self = static_cast<ShadeProcess*>(state);
            self->prepare(innerCtx, self->argument, vertex, color);
        },
        [](fz_context* innerCtx, void* state, fz_vertex* a, fz_vertex* b, fz_vertex* c) {
            if (const CookieScope* scope = CookieScope::current(); scope && scope->isStopped())
                fz_throw(innerCtx, FZ_ERROR_ABORT, "the operation was stopped");
            auto* self = static_cast<ShadeProcess*>(state);
            self->process(innerCtx, self->argument, a, b, c);
        },
        &inner);
}

// The JPEG library keeps the whole of a progressive picture, and prints what it does not like.
using CreateDecompressFunction = void(j_decompress_ptr, int, std::size_t);
CreateDecompressFunction realCreateDecompress __asm__("__real_jpeg_CreateDecompress");
CreateDecompressFunction createDecompress __asm__("__wrap_jpeg_CreateDecompress");

void createDecompress(j_decompress_ptr decompress, int version, std::size_t size)
{
    realCreateDecompress(decompress, version, size);
    decompress->mem->max_memory_to_use = static_cast<long>(limits::decoder);
}

using StandardErrorFunction = jpeg_error_mgr*(jpeg_error_mgr*);
StandardErrorFunction realStandardError __asm__("__real_jpeg_std_error");
StandardErrorFunction standardError __asm__("__wrap_jpeg_std_error");

jpeg_error_mgr* standardError(jpeg_error_mgr* manager)
{
    realStandardError(manager);
    manager->output_message = ignoreMessage;
    return manager;
}

// So does the JPEG 2000 library, in 32 bits a sample.
using DecodeFunction = OPJ_BOOL(opj_codec_t*, opj_stream_t*, opj_image_t*);
DecodeFunction realDecode __asm__("__real_opj_decode");
DecodeFunction decode __asm__("__wrap_opj_decode");

OPJ_BOOL decode(opj_codec_t* codec, opj_stream_t* stream, opj_image_t* image)
{
    std::size_t bytes = 0;
    for (OPJ_UINT32 i = 0; i < image->numcomps; ++i)
        bytes += std::size_t{image->comps[i].w} * image->comps[i].h * sizeof(OPJ_INT32);
    return bytes <= limits::decoder ? realDecode(codec, stream, image) : OPJ_FALSE;
}

} // extern "C"

} // namespace pdf
