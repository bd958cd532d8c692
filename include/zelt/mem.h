/** @file
 *  Aligned allocation. */
#ifndef ZELT_MEM_H
#define ZELT_MEM_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** Allocates memory that starts at a multiple of 32, from malloc; contents are undefined. Any thread. Both names are
 *  the same function.
 *  @param size  bytes; 0 gives a block that can only be freed
 *  @return      the block, to be freed with zelt_mfree_align32 and with nothing else, or null */
/** @{ */
ZELT_API void *zelt_malloc_align32(uint32_t size);
ZELT_API void *zelt_malloc_fast_align32(uint32_t size);
/** @} */

/** Frees a block from zelt_malloc_align32. Any thread. Both names are the same function.
 *  @param p  the block, or null, which does nothing */
/** @{ */
ZELT_API void zelt_mfree_align32(void *p);
ZELT_API void zelt_mfree_fast_align32(void *p);
/** @} */

ZELT_END_DECLS

#endif
