/* Records as other programs were compiled against them: on 32-bit targets every field is at its word, elsewhere
 * pointers have their natural size and the order is the same. A wrong one is an array of negative size. */
#include "zelt/zelt.h"

#define SIZE(record, words, bytes64)                                                                                   \
    typedef char size_of_##record[sizeof(record) == (sizeof(void *) == 4 ? 4 * (words) : (bytes64)) ? 1 : -1]
#define AT(record, field, word)                                                                                        \
    typedef char record##_##field[sizeof(void *) != 4 || offsetof(record, field) == 4 * (word) ? 1 : -1]

SIZE(ZELT_IMGB, 58, 296);
AT(ZELT_IMGB, refcnt, 0);
AT(ZELT_IMGB, addref, 1);
AT(ZELT_IMGB, getref, 2);
AT(ZELT_IMGB, release, 3);
AT(ZELT_IMGB, w, 4);
AT(ZELT_IMGB, h, 5);
AT(ZELT_IMGB, x, 6);
AT(ZELT_IMGB, y, 7);
AT(ZELT_IMGB, cs, 8);
AT(ZELT_IMGB, stride, 9);
AT(ZELT_IMGB, rows, 13);
AT(ZELT_IMGB, plane, 17);
AT(ZELT_IMGB, plane_aux, 21);
AT(ZELT_IMGB, user, 25);
AT(ZELT_IMGB, aw, 42);
AT(ZELT_IMGB, ah, 43);
AT(ZELT_IMGB, alloc_cb, 44);
AT(ZELT_IMGB, free_cb, 45);
AT(ZELT_IMGB, base, 46);
AT(ZELT_IMGB, base_aux, 50);
AT(ZELT_IMGB, size, 54);
AT(ZELT_IMGB, reserved, 55);

SIZE(ZELT_VDATA, 3, 16);
AT(ZELT_VDATA, type, 0);
AT(ZELT_VDATA, size, 1);
AT(ZELT_VDATA, data, 2);
