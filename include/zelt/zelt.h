/** @file
 *  All of libzelt. */
#ifndef ZELT_ZELT_H
#define ZELT_ZELT_H

#include "zelt/common.h"
#include "zelt/csc.h"
#include "zelt/imgb.h"
#include "zelt/mem.h"
#include "zelt/sad.h"
#include "zelt/vdata.h"

#endif
