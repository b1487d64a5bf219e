# MuPDF comes as static libraries whose own dependencies have to be named after it, in this order.

find_path(MUPDF_INCLUDE_DIR mupdf/pdf.h REQUIRED)
find_library(MUPDF_LIBRARY NAMES libmupdf.a REQUIRED)
find_library(MUPDF_THIRD_LIBRARY NAMES libmupdf-third.a REQUIRED)

add_library(MuPDF::MuPDF INTERFACE IMPORTED)
target_include_directories(MuPDF::MuPDF SYSTEM INTERFACE ${MUPDF_INCLUDE_DIR})
target_link_libraries(MuPDF::MuPDF INTERFACE
  ${MUPDF_LIBRARY} ${MUPDF_THIRD_LIBRARY} freetype harfbuzz jbig2dec openjp2 jpeg z gumbo mujs m)

# The engine puts its limits around these functions (src/pdf/DecoderLimits.cpp), its own answers around others
# (DisjointBoxes.cpp, RepairKeepingChanges.cpp, StoredKeys.cpp beside it), and its lock around the last four
# (SharedPictureLock.cpp).
find_path(OPENJPEG_INCLUDE_DIR openjpeg.h PATH_SUFFIXES openjpeg-2.5 REQUIRED)
target_include_directories(MuPDF::MuPDF SYSTEM INTERFACE ${OPENJPEG_INCLUDE_DIR})
foreach(function fz_open_flated fz_open_lzwd fz_open_rld fz_open_dctd fz_process_shade
        jpeg_CreateDecompress jpeg_std_error opj_decode pdf_objcmp pdf_repair_xref
        pdf_page_obj_transform pdf_page_transform
        jbig2_data_in jbig2_complete_page jbig2_ctx_free jbig2_global_ctx_free)
  target_link_options(MuPDF::MuPDF INTERFACE "-Wl,--wrap=${function}")
endforeach()
