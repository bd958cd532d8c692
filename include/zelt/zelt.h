// SPDX-License-Identifier: MIT
/** @file
 *  All of libzelt. */
#ifndef ZELT_ZELT_H
#define ZELT_ZELT_H

#include "zelt/audb.h"
#include "zelt/bitb.h"
#include "zelt/bsr.h"
#include "zelt/bsw.h"
#include "zelt/common.h"
#include "zelt/csc.h"
#include "zelt/fcc2mt.h"
#include "zelt/imgb.h"
#include "zelt/irsz.h"
#include "zelt/list.h"
#include "zelt/md5.h"
#include "zelt/mem.h"
#include "zelt/mfal.h"
#include "zelt/rbuf.h"
#include "zelt/rlist.h"
#include "zelt/sad.h"
#include "zelt/str.h"
#include "zelt/vdata.h"
#include "zelt/video.h"

#endif
