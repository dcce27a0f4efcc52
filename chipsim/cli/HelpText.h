#pragma once

// What `chipsim --help` prints: the tool's usage, commands and exit status.
// The tool and its test both read it from here.
inline constexpr const char* kChipsimHelp =
    R"(Usage: chipsim --chip NAME COMMAND [ARGUMENTS]
       chipsim --help

Looks at and drives the software switch chip kept in the shared-memory segment
NAME ("/x" or "x"), as the agent that uses it runs.

Commands:
  dump                           print the chip's tables: entries, the default
                                 entry, members, groups with their members'
                                 states, and the entry scope
  log                            print the chip's call log, oldest line first
  fault FUNCTION STATUS [COUNT]  make the next COUNT (default 1) calls of the PD
                                 function FUNCTION change nothing and return
                                 STATUS; COUNT 0 cancels
  forward SESSION HASH [PIPE]    forward a packet of mirror session SESSION with
                                 the hash HASH, coming in on pipe PIPE (default:
                                 the first pipe with an entry for it), and print
                                 the LAG member selector it gets, or "miss"
  reset                          empty the chip
  traffic [--sessions A-B] [--seconds S]
                                 forward packets of the mirror sessions A to B
                                 (default 0-63) one after the other, with
                                 changing hashes, for S seconds (default 10; 0:
                                 until interrupted); print the lookups per
                                 second as they go, then the lookups, the
                                 misses and the sessions that missed; on
                                 SIGUSR1, the lookups and misses so far

Options:
  --chip NAME                    the chip to work on; it must exist
  -h, --help                     print this help and exit

Exit status: 0 done, 1 failed, 2 bad command line.
)";
