/**
 * @file types.h
 * The types, status codes and conventions that every zorj function shares.
 *
 * Names. A function's name spells out the operation, the standard it serves, the sample types and the layout:
 * `zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R` turns signed 16-bit coefficients into an unsigned 8-bit region.
 *
 * | token                     | meaning                                                                      |
 * |---------------------------|------------------------------------------------------------------------------|
 * | 1u                        | a bit stream (bytes that hold packed bits)                                   |
 * | 8u 16u 16s 32s 32f        | unsigned 8 and 16-bit, signed 16 and 32-bit samples, 32-bit floats           |
 * | C1 C2 C3 C4               | one image whose pixels interleave that many channels                         |
 * | P3 P4                     | that many planes: an array of plane pointers, one step for all of them       |
 * | R                         | works on a region: every image pointer is followed by its step in bytes      |
 * | I                         | in place: one pointer is both source and destination                         |
 * | LS                        | shifts the level by 128 between unsigned samples and signed values           |
 * | MCU                       | works on one minimum coded unit of 8x8 blocks of 16-bit values               |
 * | 444 422 411               | chroma shared by one pixel, by 2x1 pixels, by 2x2 pixels                     |
 *
 * Steps are the distance in bytes from the start of a row to the start of the next. Any step of at least 1 is
 * accepted and samples may lie at any byte address; nothing checks that a step covers a row.
 *
 * Checks. Every function checks its arguments before it touches any data, in the order its comment gives, and
 * returns the status of the first check that fails with nothing written. Where a comment says nothing else:
 * pointers, in argument order (StatusNullPointer); then steps below 1 (StatusBadStep); then widths and heights
 * below 1 (StatusBadSize).
 *
 * Threads. Any function may be called from any number of threads at once on disjoint data; a state object
 * serves one thread at a time. Functions on whole images share the rows of a large image among
 * `ownGetNumThreads()` threads (zorcore.h); the result does not depend on their number.
 */
#ifndef ZORJ_TYPES_H
#define ZORJ_TYPES_H

#include <stdint.h>

/** Calling convention of every function: callee pops (stdcall) on 32-bit x86, the platform's own elsewhere. */
#if defined(_WIN32)
#define ZORJ_CALL __stdcall
#elif defined(__i386__)
#define ZORJ_CALL __attribute__((stdcall))
#else
#define ZORJ_CALL
#endif

/** Visibility of every function. Define ZORJ_STATIC to link the objects without the shared library. */
#if defined(_WIN32) && defined(ZORJ_BUILDING)
#define ZORJ_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(ZORJ_STATIC)
#define ZORJ_API __declspec(dllimport)
#elif defined(_WIN32)
#define ZORJ_API
#else
#define ZORJ_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** What a function reports: zero for success, negative for errors, positive for warnings. */
typedef enum StatusCode {
  StatusOk = 0,                 /**< Success. */
  StatusDivideByZero = 6,       /**< Warning: a divisor was zero, its quotient saturated; the rest is valid. */
  StatusBlockOverrun = -2,      /**< A decoded run leads outside the 64 coefficients of a block. */
  StatusBadArgument = -5,       /**< A value outside what the function accepts. */
  StatusBadSize = -6,           /**< A width, height, length or count below 1 or outside the supported range. */
  StatusOutOfRange = -7,        /**< A computed value falls outside the range the operation supports. */
  StatusNullPointer = -8,       /**< A required pointer is null; also a failed allocation of a Huffman object. */
  StatusNoMemory = -9,          /**< A JPEG 2000 state could not be allocated. */
  StatusBadStep = -14,          /**< A row step below 1. */
  StatusBadContext = -17,       /**< A JPEG 2000 state object does not carry its identifying mark. */
  StatusBufferEnd = -62,        /**< The destination is full, or the input ended while bits were needed. */
  StatusHuffmanDataError = -63, /**< No such code, a value too large, or a marker cut the data short. */
  StatusBadHuffmanTable = -64,  /**< An invalid table, or a symbol to be encoded that has no code. */
  StatusCodeBlockError = -112,  /**< Corrupt code-block data: wrong segmentation symbol or termination. */
  StatusBadPassNumber = -113,   /**< A coding-pass index outside the passes of the code-block. */
  StatusPackBitsError = -124,   /**< The source or destination of a row coder ended before the row did. */
  StatusNotAttached = -180      /**< The progressive code-block decoder has no destination yet. */
} StatusCode;

/** Width and height of a region in pixels; passed by value. */
typedef struct RoiSize {
  int32_t width;  /**< Pixels in a row. */
  int32_t height; /**< Rows. */
} RoiSize;

/** The version record of the library. The strings are constant: do not change or free them. */
typedef struct LibraryVersion {
  int32_t major;         /**< First part of the version. */
  int32_t minor;         /**< Second part of the version. */
  int32_t majorBuild;    /**< Build of the release. */
  int32_t build;         /**< Running number of the build. */
  char targetCpu[4];     /**< Code of the processor family, padded with zero bytes. */
  const char* name;      /**< File name of the library. */
  const char* version;   /**< Version as text. */
  const char* buildDate; /**< Date of the release. */
} LibraryVersion;

/**
 * Tells the version.
 * @return The one version record; never null, never fails.
 */
ZORJ_API const LibraryVersion* ZORJ_CALL zorjGetLibVersion(void);

#ifdef __cplusplus
}
#endif

#endif
