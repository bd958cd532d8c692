/** @file
 *  All of libzelt. */
#ifndef ZELT_ZELT_H
#define ZELT_ZELT_H

#include "zelt/bsr.h"
#include "zelt/bsw.h"
#include "zelt/common.h"
#include "zelt/csc.h"
#include "zelt/fcc2mt.h"
#include "zelt/imgb.h"
#include "zelt/mem.h"
#include "zelt/str.h"
#include "zelt/vdata.h"

#endif
