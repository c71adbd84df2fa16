#include "files/jpeg_codec.hpp"

#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>

// Behind <cstdio>, whose types it uses.
#include <jpeglib.h>
// Behind jpeglib.h.
#include <jerror.h>

namespace orlix {
namespace {

// libjpeg reports an error by a function that must not return: it jumps back into the method that called libjpeg. No
// frame in between has anything to destroy: between setjmp and libjpeg there are plain values only.
struct JpegErrors {
    jpeg_error_mgr manager;  // first, so that a pointer to it is one to this
    jmp_buf jump;
    bool damaged;
};

JpegErrors& ErrorsOf(j_common_ptr info) { return *reinterpret_cast<JpegErrors*>(info->err); }

[[noreturn]] void Jump(j_common_ptr info) { std::longjmp(ErrorsOf(info).jump, 1); }

// libjpeg goes on after damage, with grey for what is missing.
void NoteWarning(j_common_ptr info, int level) {
    if (level >= 0) return;
    const int code = info->err->msg_code;
    if (code != JWRN_EXTRANEOUS_DATA && code != JWRN_ADOBE_XFORM && code != JWRN_JFIF_MAJOR)
        ErrorsOf(info).damaged = true;
}

void Prepare(JpegErrors& errors) {
    jpeg_std_error(&errors.manager);
    errors.manager.error_exit = &Jump;
    errors.manager.emit_message = &NoteWarning;
    errors.damaged = false;
}

class JpegDecompressor {
public:
    JpegDecompressor() { Prepare(errors_); }
    ~JpegDecompressor() { jpeg_destroy_decompress(&info_); }  // also one that was never created
    JpegDecompressor(const JpegDecompressor&) = delete;
    JpegDecompressor& operator=(const JpegDecompressor&) = delete;

    bool Start(const uint8_t* bytes, size_t size, const JpegSize& wanted) {
        info_.err = &errors_.manager;
        if (setjmp(errors_.jump)) return false;
        jpeg_create_decompress(&info_);
        info_.err = &errors_.manager;
        jpeg_mem_src(&info_, bytes, static_cast<unsigned long>(size));
        if (jpeg_read_header(&info_, TRUE) != JPEG_HEADER_OK) return false;
        info_.do_block_smoothing = FALSE;  // invents details that progressive files do not hold
        info_.out_color_space = wanted.bands == 1 ? JCS_GRAYSCALE : JCS_RGB;
        return jpeg_start_decompress(&info_) && info_.output_components == wanted.bands &&
               info_.output_width == static_cast<JDIMENSION>(wanted.width) &&
               info_.output_height == static_cast<JDIMENSION>(wanted.height);
    }
    bool Read(uint8_t* row) {
        if (setjmp(errors_.jump)) return false;
        return jpeg_read_scanlines(&info_, &row, 1) == 1 && !errors_.damaged;
    }

private:
    JpegErrors errors_{};
    jpeg_decompress_struct info_{};
};

class JpegCompressor {
public:
    JpegCompressor() { Prepare(errors_); }
    ~JpegCompressor() {
        jpeg_destroy_compress(&info_);
        std::free(bytes_);
    }
    JpegCompressor(const JpegCompressor&) = delete;
    JpegCompressor& operator=(const JpegCompressor&) = delete;

    bool Start(const JpegSize& size, int quality) {
        info_.err = &errors_.manager;
        if (setjmp(errors_.jump)) return false;
        jpeg_create_compress(&info_);
        jpeg_mem_dest(&info_, &bytes_, &size_);
        info_.image_width = static_cast<JDIMENSION>(size.width);
        info_.image_height = static_cast<JDIMENSION>(size.height);
        info_.input_components = size.bands;
        info_.in_color_space = size.bands == 1 ? JCS_GRAYSCALE : JCS_RGB;
        jpeg_set_defaults(&info_);
        jpeg_set_quality(&info_, quality, TRUE);
        jpeg_start_compress(&info_, TRUE);
        return true;
    }
    bool Write(uint8_t* row) {
        if (setjmp(errors_.jump)) return false;
        return jpeg_write_scanlines(&info_, &row, 1) == 1;
    }
    bool Finish() {
        if (setjmp(errors_.jump)) return false;
        jpeg_finish_compress(&info_);
        return true;
    }
    std::span<const uint8_t> bytes() const { return {bytes_, size_}; }

private:
    JpegErrors errors_{};
    jpeg_compress_struct info_{};
    unsigned char* bytes_ = nullptr;  // malloc's
    unsigned long size_ = 0;
};

size_t JpegRowBytes(const JpegSize& size) { return static_cast<size_t>(size.width) * static_cast<size_t>(size.bands); }

}  // namespace

bool DecodeJpeg(std::span<const uint8_t> bytes, const JpegSize& size, const std::function<bool(const uint8_t*)>& use) {
    JpegDecompressor decompressor;
    if (!decompressor.Start(bytes.data(), bytes.size(), size)) return false;
    std::vector<uint8_t> row(JpegRowBytes(size));
    for (int32_t y = 0; y < size.height; ++y) {
        if (!decompressor.Read(row.data())) return false;
        if (!use(row.data())) return true;
    }
    return true;
}

std::vector<uint8_t> EncodeJpeg(const JpegSize& size, int32_t quality,
                                const std::function<void(int32_t, uint8_t*)>& fill) {
    JpegCompressor compressor;
    if (!compressor.Start(size, quality)) return {};
    std::vector<uint8_t> row(JpegRowBytes(size));
    for (int32_t y = 0; y < size.height; ++y) {
        fill(y, row.data());
        if (!compressor.Write(row.data())) return {};
    }
    if (!compressor.Finish()) return {};
    const auto bytes = compressor.bytes();
    return {bytes.begin(), bytes.end()};
}

}  // namespace orlix
