/**
 * @file
 * What the flat-file platform offers to the host beside the functions of pendra/platform.h.
 */
#ifndef FLAT_TREE_PLATFORM_H
#define FLAT_TREE_PLATFORM_H

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reads the tree. Until this has succeeded every node is absent and every write is refused: a host must not serve then,
 * for an absent password is an empty one.
 *
 * @return 0; -1 when the file is missing, too long, or has a line that is no node.
 */
int flatTreeOpen(const char* file);

/** From here on writes gather in memory. Without it each write is stored by itself before it returns. */
void flatTreeBegin(void);

/**
 * Stores what was written since flatTreeBegin(), as a whole.
 *
 * @return 0 when it is on the disk; -1 when it could not be stored. File and memory are then as before flatTreeBegin().
 */
int flatTreeCommit(void);

/** @return why the last of these calls, or the last write, failed: one line for a person. */
const char* flatTreeProblem(void);

#ifdef __cplusplus
}
#endif

#endif
