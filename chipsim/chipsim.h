/*
 * Test control of chipsim, the software model of the switch chip behind the
 * PD functions of <Pd/KestroSwitchPd.h>.
 *
 * Where the chip lives: a process starts on a private chip in its own memory,
 * made on first use. chipsim_attach(name) moves the process to a chip in the
 * named POSIX shared-memory segment (mode 0600), made if it does not exist, so
 * that several processes, or an agent and its restarted self, share one chip.
 * A process-shared robust mutex guards the chip: a process that dies in the
 * middle of a call leaves neither a lock nor a half-done change behind.
 *
 * Functions returning int give 0 on success or an errno value. Functions that
 * cannot get at a chip (no memory for a private chip) behave as if the chip
 * were empty.
 *
 * Call log: every PD call adds one line of the form
 *
 *   NAME(ARGUMENTS) = STATUS[ (injected)][ OUTPUTS]
 *
 * NAME is the PD function's name. ARGUMENTS are the call's inputs in their
 * order, separated by ", ", each as label=value:
 *
 *   sess=%u            session handle
 *   dev=%d, pipe=0x%x  device target (pipe 0xffff: all pipes)
 *   dev=%d             device id alone
 *   mirror_session=%u  the match spec's key, or mirror_session=NULL
 *   selector=%u        the action spec's LAG member selector, or selector=NULL
 *   entry=%u mbr=%u grp=%u    entry, member and group handles
 *   property=%u, value=%u, size=%u, state=%d, read_from_hw=true|false
 *
 * STATUS is the returned status in decimal; " (injected)" follows when the
 * status came from chipsim_fail_next. OUTPUTS, each preceded by one space,
 * list the out-parameters in their order: label=value when the call returned
 * 0 and was not injected, label=NULL for an out-pointer that was NULL,
 * nothing otherwise. The labels are entry=, mbr=, grp= for new handles, and
 * mirror_session=, mbr_or_grp=, is_group= (true|false) for the read-back.
 * For example:
 *
 *   p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(sess=1, dev=0, pipe=0xffff,
 *       mirror_session=5, mbr=3) = 0 entry=17
 *
 * (one line in the log). The log is kept in the chip: every process attached to
 * the chip sees the same lines. It holds the last log_lines lines.
 *
 * Order of the checks of every PD function: bad arguments (3: a NULL pointer, a
 * device other than the chip's, a pipe that is neither one of its pipes nor
 * 0xffff, a bad property code or value, a group size of 0 or above
 * max_group_size, a state other than 0 and 1), then unknown handles (6), then
 * conflicts (4: a key already in the entry's pipe scope, a member already in the
 * group; 16: a member or group still used by an entry or a group), then room (9).
 */
#ifndef CHIPSIM_CHIPSIM_H
#define CHIPSIM_CHIPSIM_H

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

#define CHIPSIM_API __attribute__((visibility("default")))

/* The chip's make-up, fixed when a chip is made. */
typedef struct chipsim_config {
  int32_t device_id;       /* the device id the chip answers to (default 0) */
  uint32_t pipes;          /* pipes 0 .. pipes-1 (default 4, at most 64) */
  uint32_t entries;        /* match entries, the default entry not counted (default 65536) */
  uint32_t members;        /* action-profile members (default 16384) */
  uint32_t groups;         /* selector groups (default 4096) */
  uint32_t max_group_size; /* largest group size create_group accepts (default 256) */
  uint32_t log_lines;      /* call-log lines kept (default 16384) */
} chipsim_config;

/* The default make-up. */
CHIPSIM_API void chipsim_config_default(chipsim_config* config);

/*
 * Sets the make-up of the chips made from now on by chipsim_attach (a new
 * segment, or a private chip) and by chipsim_reset of a private chip. EINVAL
 * for a NULL config or a value out of range (every count at least 1, at most
 * 16777216 entries or members, 1048576 groups, 4096 for max_group_size,
 * 1048576 log lines, 64 pipes; device_id not negative; at most 1 GiB of
 * memory in all).
 */
CHIPSIM_API int chipsim_configure(const chipsim_config* config);

/* The make-up of the chip the process is attached to. */
CHIPSIM_API int chipsim_config_get(chipsim_config* config);

/*
 * Attaches the process to the chip in the shared-memory segment `name` ("/x"
 * or "x"), making it if there is none; NULL attaches to a new private chip.
 * EINVAL for a bad name or a segment that is not a chip of this version;
 * EPERM for a segment that is not a regular file of this user with mode 0600
 * (chipsim_last_fault says whose and which mode), ELOOP for a link.
 */
CHIPSIM_API int chipsim_attach(const char* name);

/* As chipsim_attach, but ENOENT when there is no such segment. */
CHIPSIM_API int chipsim_attach_existing(const char* name);

/* Removes the named segment; processes attached to it keep their chip. */
CHIPSIM_API int chipsim_unlink(const char* name);

/* The attached chip's segment name ("/x"), or "(private)". */
CHIPSIM_API const char* chipsim_name(void);

/*
 * Empties the chip: objects, entry scope (all pipes), call counts, faults and
 * log. A private chip is made anew with the configured make-up; a named chip
 * keeps the make-up it was made with, since other processes map it.
 */
CHIPSIM_API int chipsim_reset(void);

/*
 * The next `count` calls of the PD function named `pd_function` change nothing
 * and return `status` (count 0 cancels). EINVAL for an unknown name, and for
 * status 0 with a count, which is no fault.
 */
CHIPSIM_API int chipsim_fail_next(const char* pd_function, int status, unsigned count);

/* Calls of the named PD function since the chip was made or reset; -1 for an unknown name. */
CHIPSIM_API int64_t chipsim_calls(const char* pd_function);

/* Objects in the chip. chipsim_entries() does not count the default entry. */
CHIPSIM_API uint32_t chipsim_entries(void);
CHIPSIM_API uint32_t chipsim_members(void);
CHIPSIM_API uint32_t chipsim_groups(void);

/* Results of the look-ups, besides 0 (a match entry gave the selector) and EINVAL. */
#define CHIPSIM_DEFAULT_HIT 1 /* no match entry: the default entry gave the selector */
#define CHIPSIM_MISS 2        /* no selector: no entry, or a group without active member */

/*
 * Forwards a packet of mirror session `session`, as if it came in on pipe
 * `pipe`: the match entry whose pipe scope covers the pipe or, failing that,
 * the default entry decides. A member gives its selector; a group gives the
 * selector of its active member number hash % (active members), counting in
 * the order the members were added. EINVAL for a NULL selector or a bad pipe.
 */
CHIPSIM_API int chipsim_lookup_on_pipe(uint32_t pipe, uint16_t session, uint32_t hash,
                                       uint16_t* selector);

/* chipsim_lookup_on_pipe on pipe 0, 1, ... in turn: the first match entry found decides. */
CHIPSIM_API int chipsim_lookup(uint16_t session, uint32_t hash, uint16_t* selector);

/* Lines in the call log, oldest first. */
CHIPSIM_API uint32_t chipsim_log_count(void);

/*
 * A copy of log line `index` (0: the oldest kept), valid until the calling
 * thread's next chipsim_log_line; NULL when there is no such line.
 */
CHIPSIM_API const char* chipsim_log_line(uint32_t index);

CHIPSIM_API void chipsim_log_clear(void);

/* Writes the chip's tables as text (the chipsim tool's dump). */
CHIPSIM_API int chipsim_dump(FILE* out);

/*
 * Checks that the chip's state is coherent (counts, free lists, key index,
 * references, group membership). NULL when it is; otherwise a text naming
 * the first fault found, valid until the thread's next call.
 */
CHIPSIM_API const char* chipsim_check(void);

/*
 * chipsim_check, telling a damaged chip from one that cannot be had: 0 when
 * the chip is coherent; EUCLEAN when it is damaged; ETIMEDOUT when another
 * process held its lock too long; another errno value when there is no chip.
 * `fault` (if not NULL) gets the text of what was found, or NULL, valid until
 * the thread's next call.
 */
CHIPSIM_API int chipsim_examine(const char** fault);

/*
 * What the calling thread's last call that failed with EUCLEAN (a damaged
 * chip, chipsim_attach too), ETIMEDOUT (a lock held too long) or EPERM (a
 * segment of another user or mode, chipsim_attach) found; "" when
 * there was none. Valid until the thread's next call.
 */
CHIPSIM_API const char* chipsim_last_fault(void);

/*
 * For tests of a process that dies while it holds the chip: takes the chip's
 * lock, starts a change (the entry count reads 1000 too high until it is
 * undone), calls locked(context) if not NULL, sleeps `ms` milliseconds, undoes
 * the change and lets the lock go.
 */
CHIPSIM_API int chipsim_hold_lock_for_test(unsigned ms, void (*locked)(void* context),
                                           void* context);

/*
 * For tests of a process that dies in the middle of a call: the calling
 * process kills itself with SIGKILL at the `changes`-th change it makes to
 * the chip's state from now on (0: never). Every field a PD call writes is a
 * change, and so is the midst of chipsim_reset.
 */
CHIPSIM_API void chipsim_kill_after_changes_for_test(unsigned changes);

/*
 * Every function above, listed once, for code that loads the library with
 * dlopen and finds them by name: X(name, shortName), where shortName is the
 * lower camel-case name such code gives the function.
 */
#define CHIPSIM_CONTROL_FUNCTIONS(X)             \
  X(chipsim_config_default, configDefault)       \
  X(chipsim_configure, configure)                \
  X(chipsim_config_get, configGet)               \
  X(chipsim_attach, attach)                      \
  X(chipsim_attach_existing, attachExisting)     \
  X(chipsim_unlink, unlink)                      \
  X(chipsim_name, name)                          \
  X(chipsim_reset, reset)                        \
  X(chipsim_fail_next, failNext)                 \
  X(chipsim_calls, calls)                        \
  X(chipsim_entries, entries)                    \
  X(chipsim_members, members)                    \
  X(chipsim_groups, groups)                      \
  X(chipsim_lookup_on_pipe, lookupOnPipe)        \
  X(chipsim_lookup, lookup)                      \
  X(chipsim_log_count, logCount)                 \
  X(chipsim_log_line, logLine)                   \
  X(chipsim_log_clear, logClear)                 \
  X(chipsim_dump, dump)                          \
  X(chipsim_check, check)                        \
  X(chipsim_examine, examine)                    \
  X(chipsim_last_fault, lastFault)               \
  X(chipsim_hold_lock_for_test, holdLockForTest) \
  X(chipsim_kill_after_changes_for_test, killAfterChangesForTest)

#ifdef __cplusplus
}
#endif

#endif /* CHIPSIM_CHIPSIM_H */
