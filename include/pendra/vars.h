/**
 * @file
 * The variable interface: every value of the setup record as a named variable ("zep_Wl2_WirelessName"), for pages and
 * forms of a device's web service.
 *
 * Thread rule of everything in this file: one thread, one call at a time; the results of cvtZep_XmlPathVsVarName() and
 * getZepVar() stand in static buffers that the next call overwrites.
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
 * docs/variables.md lists them. A series of calls is: init_ZepVar(), any number of sets and checks, then
 * do_ZepVar_Parser() with its apply flag, or the actions "zep_Act_VerifyAllZepVars", "zep_Act_ApplyAllZepVars",
 * "zep_Act_CommitZepVars".
 *
 * Return codes of the calls that set, get and check: 0 done; 1 the section is not configurable; 2 unknown name,
 * unsupported mode, index out of range, or a value that a built-in check rejects or that does not fit its field; 3
 * malformed pair; 10 not in the variable's table; any other code of validate_ZepData(); for actions the result code of
 * the run.
 *
 * Thread rule: one thread, one call at a time. Actions act as the calls they stand for do.
 * @{
 */

#define ZEPVAR_GET 0x001u      /**< read the variable into the value buffer */
#define ZEPVAR_PATH 0x100u     /**< with ZEPVAR_GET: its configuration-tree path instead of its value */
#define ZEPVAR_SET 0x200u      /**< check the value and store it in the record */
#define ZEPVAR_VALIDATE 0x400u /**< check the value only */

/** Capacity of every value buffer, in and out, NUL included. */
#define ZEPVAR_VALUE_SIZE 128

/**
 * Converts between a variable name and a document path ("/Device/Wireless2.4/WirelessName"). Blanks and line ends
 * around the text are left out. The name need not be that of a variable.
 *
 * @param text      the name or path; may be null.
 * @param direction non-zero: name to path; zero: path to name.
 * @return the text in a static buffer, or null when it cannot be converted or is longer than 127 characters.
 */
PENDRA_API char* cvtZep_XmlPathVsVarName(const char* text, int32_t direction);

/**
 * Reads, checks or sets one variable of ::zepXmlData, or performs an action ("zep_Act_...").
 *
 * Nothing reaches the configuration tree but by the actions, and nothing is read from it but by actions and by live
 * values. Actions are performed whatever the flags: "SiteSurvey" writes "/uplink/extendersite/survey" and may delete
 * "/runtime/apcloninginfo/extendersite"; "VerifyAllZepVars" checks the record and writes the result document;
 * "ApplyAllZepVars" writes into the tree what differs; "SetZepVars" is do_ZepVar_Parser() on the value, without apply;
 * "CommitZepVars" installs a SIGALRM handler and arms a 2-second alarm, see do_ZepVar_Commit().
 *
 * ZEPVAR_VALIDATE alone gives 2, not 0, for a value that an enumerated variable of a section takes.
 *
 * @param name  a variable name, or a document path, which is converted first; null is unknown.
 * @param value ZEPVAR_VALUE_SIZE bytes: the value in for set and validate, out for get; the message of an action that
 *              fails. With ZEPVAR_GET it is emptied first (but for actions). Null is refused with 2.
 * @param flags ZEPVAR_ flags; with ZEPVAR_SET and ZEPVAR_GET together the set is done and the get is not.
 * @return a code of this group. A value that is refused leaves the record as it was.
 */
PENDRA_API int32_t setget_ZepVar(const char* name, char* value, uint32_t flags);

/**
 * Fills ::zepXmlData with the device's current state, read from the tree. Call it before a series of variable calls.
 * The first call since loading also forgets the sync ids of an earlier run (pre_exeflag).
 */
PENDRA_API void init_ZepVar(void);

/**
 * do_ZepXml_Commit(), as the delayed commit of "zep_Act_CommitZepVars" runs it. That runs it in a SIGALRM handler, and
 * it is not async-signal-safe: the signal must come only while no call of the library, the tree or the allocator is
 * under way.
 *
 * @return 0 when there was nothing to do, else non-zero.
 */
PENDRA_API int32_t do_ZepVar_Commit(void);

/**
 * setget_ZepVar() with ZEPVAR_SET.
 *
 * @param name  a variable name or document path.
 * @param value ZEPVAR_VALUE_SIZE bytes: the value.
 * @return a code of this group.
 */
PENDRA_API int32_t set_ZepVar(const char* name, char* value);

/**
 * setget_ZepVar() with ZEPVAR_GET.
 *
 * @param name     a variable name or document path.
 * @param buffer   ZEPVAR_VALUE_SIZE bytes: receives the value or the path.
 * @param wantPath non-zero: with ZEPVAR_PATH too.
 * @return a code of this group.
 */
PENDRA_API int32_t get_ZepVar(const char* name, char* buffer, int32_t wantPath);

/**
 * Reads a variable for a page.
 *
 * @param name a variable name or document path; may be null.
 * @return the variable's value in a static buffer, "**ERROR**" when it cannot be read. Never null.
 */
PENDRA_API char* getZepVar(const char* name);

/**
 * setget_ZepVar() with ZEPVAR_VALIDATE.
 *
 * @param name  a variable name or document path.
 * @param value ZEPVAR_VALUE_SIZE bytes: the value.
 * @return a code of this group.
 */
PENDRA_API int32_t validate_ZepVar(const char* name, char* value);

/**
 * validate_ZepVar() of a "name=value" text, taken as it stands: nothing is trimmed or decoded.
 *
 * @param pair the text, not changed; may be null.
 * @return a code of this group; 3 without "=" or for a name over 31 bytes.
 */
PENDRA_API int32_t validate_ZepVar2(char* pair);

/**
 * Takes in a posted form: sets every "name=value" pair, verifies the record, optionally applies it, and writes the
 * result document. Points ::XmlErrMsg_LostKey at the writer of result 2; logs text and record at level 6. Runs no
 * script: see do_ZepVar_Commit().
 *
 * Values are form-decoded and cut at 127 bytes, names are cut at 31. The first pair that is refused ends the intake;
 * what was set before stays in the record. An empty name gives 2 and leaves the result document as it is. What is
 * written into the tree before a refusal stays.
 *
 * @param text      the form, not changed; null counts as empty.
 * @param separator between pairs; unless it is a line end itself, a line end ends a value too.
 * @param errorText ZEPVAR_VALUE_SIZE bytes, or null: the refused variable's name, or the message of the result
 * document.
 * @param apply     non-zero: write what differs into the tree and compute the wait time.
 * @return the refused set's code, or the code of the result document.
 */
PENDRA_API int32_t do_ZepVar_Parser(const char* text, char separator, char* errorText, int32_t apply);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
