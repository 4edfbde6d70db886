/**
 * @file
 * Everything that libpendra exports.
 */
#ifndef PENDRA_PENDRA_H
#define PENDRA_PENDRA_H

#include "pendra/apply.h"
#include "pendra/auth.h"
#include "pendra/common.h"
#include "pendra/fwupgrade.h"
#include "pendra/platform.h"
#include "pendra/setupdoc.h"
#include "pendra/vars.h"

#endif
