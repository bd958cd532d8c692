// SPDX-License-Identifier: MIT
/** @defgroup zelt_str Text and URIs (zelt/str.h)
 *  Scanners over zero-terminated text: words, lines, pieces, URIs. Lengths are in bytes, nothing is allocated, nothing
 *  past the terminator is read. Whitespace is tab, line feed, carriage return and space, and nothing else.
 *  @{ */
#ifndef ZELT_STR_H
#define ZELT_STR_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** First byte that is not whitespace. Any thread.
 *  @param s  the text, or null
 *  @return   a pointer into it, or null where there is none */
ZELT_API char *zelt_str_move_to_validw(char *s);

/** First byte that is not whitespace, the last byte of the text left out. Any thread.
 *  @param s  the text
 *  @return   a pointer into it, or null where there is none */
ZELT_API char *zelt_str_move_to_nextw(char *s);

/** Last byte of the first word. The last byte of the text is not looked at: a word that reaches it, or has only one
 *  whitespace byte after it, gives null, unless it is a single byte with nothing after it. Any thread.
 *  @param s  the text; whitespace in front is skipped
 *  @return   a pointer into it, or null; a text of one byte gives that byte, whatever it is */
ZELT_API char *zelt_str_move_to_eow(char *s);

/** End of the first line: its line feed, also behind a carriage return, or a carriage return without one. Any thread.
 *  @param s  the text
 *  @return   a pointer into it; null where the line does not end, and where its end is the last byte of the text */
ZELT_API char *zelt_str_move_to_nextl(char *s);

/** Splits text at a character: the piece ends at the first one, or at a carriage return or line feed. Any thread.
 *  @param s     the text
 *  @param ctok  the character
 *  @param len   where the length of the piece goes; the whole length where nothing ends it
 *  @param next  where the text after the separator goes, null when nothing follows; or null
 *  @return      0, or -1 for an empty text */
ZELT_API int32_t zelt_str_parse_by_ctok(const char *s, int32_t ctok, int32_t *len, char **next);

/** Splits text at a string: the piece ends at the first one, or at a carriage return or line feed. Any thread.
 *  @param s     the text
 *  @param stok  the string
 *  @param len   where the length of the piece goes; 0 where nothing ends it
 *  @param next  where the text after the separator goes, null when nothing follows; or null
 *  @return      0, or -1 for an empty text and where nothing ends the piece */
ZELT_API int32_t zelt_str_parse_by_stok(const char *s, const char *stok, int32_t *len, char **next);

/** Splits text after its first line, which ends with a line feed or a carriage return and a line feed. Any thread.
 *  @param s     the text
 *  @param len   where the length of the line goes, its end not counted
 *  @param next  where the text after the line goes, null when nothing follows; or null
 *  @return      0; -1 for an empty text, a line that does not end (`len` is its length all the same) and a carriage
 *               return without a line feed (`len` reaches up to it) */
ZELT_API int32_t zelt_str_parse_one_line(const char *s, int32_t *len, char **next);

/** Splits `scheme "://" host [":" port] ["/" path] line-end rest`. Any thread.
 *
 *  The first ":" of the line behind "://" separates the port, even inside the path. The port is text, not a number. A
 *  path begins with "/". Where the host is empty and no port follows, everything up to the end of the text is the path.
 *  A line end before "://" is taken in its place. Pieces that are absent are empty; after an error some may be filled.
 *  @param uri     the text; whitespace in front is skipped
 *  @param scheme  where the scheme goes
 *  @param host    where the host goes
 *  @param port    where the port goes
 *  @param path    where the path goes; each of the four holds up to strlen(uri) + 1 bytes
 *  @param rest    where the text after the line goes, or null where nothing follows
 *  @return        0; -1 for null and empty text, without "://", with nothing after it, with a port of no characters */
ZELT_API int32_t zelt_str_parse_uri(const char *uri, char *scheme, char *host, char *port, char *path, char **rest);

/** Copies text with each space as "%20" and nothing else changed. Any thread.
 *  @param s    the text
 *  @param out  where it goes, zero-terminated: up to 3 * strlen(s) + 1 bytes, not overlapping s
 *  @return     the length written, the terminator not counted */
ZELT_API int32_t zelt_str_conv_a2uri(const char *s, char *out);

/** Copies text with each "%" and the two characters behind it as one byte, 16 times the first plus the second. Only 0
 *  to 9 count as digits, any other character is 0: "%20" and "%2F" both give a space. An escape cut off by the end of
 *  the text is dropped. Any thread.
 *  @param s    the text
 *  @param out  where it goes, zero-terminated: up to strlen(s) + 1 bytes; may be s itself
 *  @return     the length written, the terminator not counted */
ZELT_API int32_t zelt_str_conv_uri2a(const char *s, char *out);

/** A placeholder. Any thread.
 *  @return  0 */
ZELT_API int32_t zelt_str_get_one_az09(void);

ZELT_END_DECLS

/** @} */

#endif
