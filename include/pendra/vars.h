/**
 * @file
 * The variable interface: every value of the setup record as a named variable ("zep_Wl2_WirelessName"), for pages and
 * forms of a device's web service.
 *
 * Thread rule: one thread, one call at a time; the results of cvtZep_XmlPathVsVarName() and getZepVar() stand in static
 * buffers that the next call overwrites.
 */
#ifndef PENDRA_VARS_H
#define PENDRA_VARS_H

#include "pendra/common.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup vars Variables
 *
 * Return codes of the calls that set, get and check: 0 done; 1 the section is not configurable; 2 unknown name,
 * unsupported mode, index out of range, or a value that a built-in check rejects or that does not fit its field; 3
 * malformed pair; 10 not in the variable's table; any other code of validate_ZepData(); for actions the result code of
 * the run.
 * @{
 */

#define ZEPVAR_GET 0x001u      /**< read the variable into the value buffer */
#define ZEPVAR_PATH 0x100u     /**< with ZEPVAR_GET: its configuration-tree path instead of its value */
#define ZEPVAR_SET 0x200u      /**< check the value and store it in the record */
#define ZEPVAR_VALIDATE 0x400u /**< check the value only */

/** Capacity of every value buffer, in and out, NUL included. */
#define ZEPVAR_VALUE_SIZE 128

/**
 * Converts between a variable name and a document path ("/Device/Wireless2.4/WirelessName").
 *
 * @param direction non-zero: name to path; zero: path to name.
 * @return the text in a static buffer, or null when it cannot be converted or is longer than 127 characters.
 */
PENDRA_API char* cvtZep_XmlPathVsVarName(const char* text, int32_t direction);

/**
 * Reads, checks or sets one variable of ::zepXmlData, or performs an action ("zep_Act_...").
 *
 * Nothing reaches the configuration tree but by the actions and by reads of live values. "zep_Act_CommitZepVars"
 * installs a SIGALRM handler and arms a 2-second alarm, see do_ZepVar_Commit().
 *
 * @param name  a variable name, or a document path.
 * @param value ZEPVAR_VALUE_SIZE bytes: the value in for set and validate, out for get. With ZEPVAR_GET it is emptied
 *              first (but for actions).
 * @param flags ZEPVAR_ flags; with ZEPVAR_SET and ZEPVAR_GET together the set is done and the get is not.
 */
PENDRA_API int32_t setget_ZepVar(const char* name, char* value, uint32_t flags);

/** Fills ::zepXmlData with the device's current state. Call it before a series of variable calls. */
PENDRA_API void init_ZepVar(void);

/** do_ZepXml_Commit(), as the delayed commit of "zep_Act_CommitZepVars" runs it. */
PENDRA_API int32_t do_ZepVar_Commit(void);

/** setget_ZepVar() with ZEPVAR_SET. */
PENDRA_API int32_t set_ZepVar(const char* name, char* value);

/** setget_ZepVar() with ZEPVAR_GET, and ZEPVAR_PATH when @p wantPath is non-zero. */
PENDRA_API int32_t get_ZepVar(const char* name, char* buffer, int32_t wantPath);

/** @return the variable's value in a static buffer, "**ERROR**" when it cannot be read. Never null. */
PENDRA_API char* getZepVar(const char* name);

/** setget_ZepVar() with ZEPVAR_VALIDATE. */
PENDRA_API int32_t validate_ZepVar(const char* name, char* value);

/** validate_ZepVar() of a "name=value" text, taken as it stands. @return 3 without "=" or for a name over 31 bytes. */
PENDRA_API int32_t validate_ZepVar2(char* pair);

/**
 * Takes in a posted form: sets every "name=value" pair, verifies the record, optionally applies it, and writes the
 * result document.
 *
 * Values are form-decoded and cut at 127 bytes, names are cut at 31. The first pair that is refused ends the intake;
 * what was set before stays in the record.
 *
 * @param separator between pairs; unless it is a line end itself, a line end ends a value too.
 * @param errorText 128 bytes, or null: the refused variable's name, or the message of the result document.
 * @param apply     non-zero: write what differs into the tree and compute the wait time.
 * @return the refused set's code, or the code of the result document.
 */
PENDRA_API int32_t do_ZepVar_Parser(const char* text, char separator, char* errorText, int32_t apply);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
