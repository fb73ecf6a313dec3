/**
 * @file zorcore.h
 * The core support library under zorj: aligned memory, the size of the largest cache, and the number of threads.
 * zorj imports four functions of it; the others are for applications.
 */
#ifndef ZORCORE_H
#define ZORCORE_H

#include <stddef.h>
#include <stdint.h>

/** Visibility of every function. Define ZORCORE_STATIC to link the objects without the shared library. */
#if defined(_WIN32) && defined(ZORCORE_BUILDING)
#define ZORCORE_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(ZORCORE_STATIC)
#define ZORCORE_API __declspec(dllimport)
#elif defined(_WIN32)
#define ZORCORE_API
#else
#define ZORCORE_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Allocates memory.
 * @param length Bytes.
 * @return Memory aligned to 64 bytes, or null if `length` is below 1 or there is no memory.
 */
ZORCORE_API void* zorMalloc(int32_t length);

/**
 * Releases memory.
 * @param memory What zorMalloc returned; null is ignored.
 */
ZORCORE_API void zorFree(void* memory);

/**
 * Tells the size of the processor's largest cache.
 * @param size Receives the size in bytes.
 * @return 0, or -1 with `size` untouched if it cannot be found out or `size` is null.
 */
ZORCORE_API int zorGetMaxCacheSizeB(int32_t* size);

/**
 * Tells how many threads the library may use.
 * @return At least 1: what zorSetNumThreads set, or else the number of processors this process may use (its affinity,
 *         and its share of processor time where a control group limits it).
 */
ZORCORE_API int ownGetNumThreads(void);

/**
 * Sets the number of threads for the whole process.
 * @param threads The number; below 1 returns to the default.
 */
ZORCORE_API void zorSetNumThreads(int threads);

/** Where zorMalloc and zorFree go. */
typedef struct ZorAllocator {
  void* (*allocate)(size_t bytes, size_t alignment, void* context); /**< Returns memory so aligned, or null. */
  void (*release)(void* memory, void* context);                     /**< Takes it back; never null. */
  void* context;                                                    /**< Handed to both. */
} ZorAllocator;

/**
 * Replaces the allocator for the whole process. Call it while no memory is held and no other thread is in the library.
 * @param allocator The allocator, which must stay valid while it is in use; null returns to the default.
 */
ZORCORE_API void zorSetAllocator(const ZorAllocator* allocator);

#ifdef __cplusplus
}
#endif

#endif
