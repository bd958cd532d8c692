// SPDX-License-Identifier: MIT
/* A shared library without a soname, with a name too many, a library too many and small segments. */
int zelt_unlisted(void);

int zelt_unlisted(void) { return 0; }
