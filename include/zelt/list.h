// SPDX-License-Identifier: MIT
/** @defgroup zelt_list Lists with a cursor (zelt/list.h)
 *  A doubly linked list of elements of one size, held by value, with one cursor.
 *  @{ */
#ifndef ZELT_LIST_H
#define ZELT_LIST_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** A list. Two nodes without data close it off at either end, each linked to itself on its outer side; elements run
 *  from `head->next` to `tail->prev`. An id is the address of an element's node. One thread at a time. */
struct ZELT_LIST {
    uint32_t size;               /**< bytes per element */
    int32_t cnt;                 /**< number of elements */
    ZELT_NODE *head;             /**< the end before the first element */
    ZELT_NODE *tail;             /**< the end behind the last element */
    ZELT_NODE *cur;              /**< node of the cursor's element, null when the cursor is not set */
    void (*free_fn)(void *data); /**< called with each element that is removed, before its memory goes; may be null */
};

/** Creates an empty list.
 *  @param size     bytes per element
 *  @param free_fn  called with each element that is removed, or null
 *  @return         the list, for zelt_list_delete, or null without memory */
ZELT_API ZELT_LIST *zelt_list_create(uint32_t size, void (*free_fn)(void *data));

/** Removes every element, front to back, and frees the list.
 *  @param list  the list, or null, which does nothing */
ZELT_API void zelt_list_delete(ZELT_LIST *list);

/** Removes every element, front to back, and clears the cursor.
 *  @param list  the list
 *  @return      0 */
ZELT_API int zelt_list_rem_all(ZELT_LIST *list);

/** @name Adding
 *  @{ */
/** Copies an element into the list: zelt_list_add behind the last one, zelt_list_add_first before the first.
 *  @param list  the list
 *  @param data  `size` bytes, at any address
 *  @return      the copy, at a multiple of 8, valid until it is removed; null without memory, the list then being as it
 *               was */
ZELT_API void *zelt_list_add(ZELT_LIST *list, const void *data);
ZELT_API void *zelt_list_add_first(ZELT_LIST *list, const void *data);
/** @} */

/** Copies an element into the list at one of its ends. An index inside the list is refused.
 *  @param list  the list
 *  @param data  `size` bytes, at any address
 *  @param idx   a negative number for the front, the number of elements for the end; nothing else inserts
 *  @return      the copy, as zelt_list_add gives it; null for another index or without memory */
ZELT_API void *zelt_list_insert_at(ZELT_LIST *list, const void *data, int idx);

/** Element at a position, found from the nearer end.
 *  @param list  the list
 *  @param idx   position from 0; a negative one gives the first element
 *  @return      the element; null where there is none */
ZELT_API void *zelt_list_get_at(ZELT_LIST *list, int idx);

/** Id of the element at a position.
 *  @param list  the list
 *  @param idx   position from 0
 *  @return      the id, valid until the element is removed; null where there is none */
ZELT_API void *zelt_list_get_id(ZELT_LIST *list, int idx);

/** Element with an id, looked for from the front.
 *  @param list  the list
 *  @param id    an id
 *  @return      the element; null where none in this list has this id */
ZELT_API void *zelt_list_get_atid(ZELT_LIST *list, void *id);

/** @name The ends
 *  @{ */
/** First and last element.
 *  @param list  the list
 *  @return      the element; null for an empty list */
ZELT_API void *zelt_list_get_first(ZELT_LIST *list);
ZELT_API void *zelt_list_get_last(ZELT_LIST *list);
/** @} */

/** Number of elements.
 *  @param list  the list
 *  @return      `cnt` */
ZELT_API int zelt_list_get_cnt(ZELT_LIST *list);

/** Element of the cursor.
 *  @param list  the list
 *  @return      the element; null when the cursor is not set */
ZELT_API void *zelt_list_get_cur(ZELT_LIST *list);

/** @name Moving the cursor
 *  @{ */
/** Moves the cursor: to the first or last element, or from where it is to the next or previous one. Where there is no
 *  such element, or nothing to step from, the cursor is cleared.
 *  @param list  the list
 *  @return      the element of the cursor now; null when it is cleared */
ZELT_API void *zelt_list_move_first(ZELT_LIST *list);
ZELT_API void *zelt_list_move_last(ZELT_LIST *list);
ZELT_API void *zelt_list_move_next(ZELT_LIST *list);
ZELT_API void *zelt_list_move_prev(ZELT_LIST *list);
/** @} */

/** Removes the element at a position, counted from the front. A cursor on it moves to the next element, or is cleared
 *  behind the last one; so it does in every function that removes.
 *  @param list  the list
 *  @param idx   position from 0; where there is no element nothing is removed
 *  @return      the number of elements left */
ZELT_API int zelt_list_rem_at(ZELT_LIST *list, int idx);

/** Removes the element with an id.
 *  @param list  the list
 *  @param id    the id of an element of this list, which is not checked; null does nothing
 *  @return      the number of elements left */
ZELT_API int zelt_list_rem_atid(ZELT_LIST *list, void *id);

/** @name Removing at the ends and at the cursor
 *  @{ */
/** Removes the first element, the last one, or the cursor's. Where there is none nothing is removed.
 *  @param list  the list
 *  @return      the number of elements left */
ZELT_API int zelt_list_rem_first(ZELT_LIST *list);
ZELT_API int zelt_list_rem_last(ZELT_LIST *list);
ZELT_API int zelt_list_rem_cur(ZELT_LIST *list);
/** @} */

/** Removes the element before the cursor's, or the last element when the cursor is not set.
 *  @param list  the list
 *  @return      the number of elements left; -1 where there is nothing to remove */
ZELT_API int zelt_list_rem_prev(ZELT_LIST *list);

/** Removes the element behind the cursor's.
 *  @param list  the list
 *  @return      the number of elements left; 0 when the cursor is not set; -1 where it is on the last element */
ZELT_API int zelt_list_rem_next(ZELT_LIST *list);

ZELT_END_DECLS

/** @} */

#endif
