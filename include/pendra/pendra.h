/**
 * @file
 * Everything that libpendra exports, and what it needs from the device.
 *
 * @mainpage libpendra
 *
 * The library admits setup clients, takes their documents and forms into the device's configuration tree, lists
 * wireless stations and fetches firmware. It has no main loop: a host calls it, and it calls the device (platform.h).
 *
 * @section threads Thread rule
 *
 * No locks. Call the library from one thread, one call at a time; what is exported as data may be used between calls.
 * Each group says what is exempt. Two things happen later, on SIGALRM, and neither is async-signal-safe: the firmware
 * hand-over (alarm_handler_fwupd()) and the delayed commit (do_ZepVar_Commit()). Keep SIGALRM blocked but where no call
 * of the library, the tree or the allocator is under way.
 *
 * @section failures Failures
 *
 * Results are small integers, never exceptions: parsers, checks and setup runs give 1 for success and 0 for
 * failure, variables give 0 for success. Texts that do not fit are cut, without a report. What a client is to know
 * stands in the result document.
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
