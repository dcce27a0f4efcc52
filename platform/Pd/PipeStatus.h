/*
 * The SDK's status codes, by name, listed once with the text the SDK gives
 * each. A PD function returns one of them as its pipe_status; 0 is success.
 *
 *   PIPE_STATUSES(X) calls X(code, name, text) for every code, in order.
 *
 * enum pipe_status_code names every code; code that tests or returns a status
 * uses these names instead of numbers, and the plug-in's status texts are made
 * from the list. Adding a status: list it here, then write the code that gives
 * or handles it.
 */
#ifndef PD_PIPE_STATUS_H
#define PD_PIPE_STATUS_H

#define PIPE_STATUSES(X)                                                              \
  X(0, PIPE_STATUS_SUCCESS, "Success")                                                \
  X(1, PIPE_STATUS_NOT_READY, "Pipeline manager service not ready")                   \
  X(2, PIPE_STATUS_NO_SYSTEM_RESOURCES, "No system resources")                        \
  X(3, PIPE_STATUS_INVALID_ARGUMENT, "Invalid arguments")                             \
  X(4, PIPE_STATUS_ALREADY_EXISTS, "Object already exists")                           \
  X(5, PIPE_STATUS_COMMUNICATION_FAILED, "Communication failed")                      \
  X(6, PIPE_STATUS_NOT_FOUND, "Object not found")                                     \
  X(7, PIPE_STATUS_TOO_MANY_SESSIONS, "Exceeded max sessions")                        \
  X(8, PIPE_STATUS_SESSION_NOT_FOUND, "Session not found")                            \
  X(9, PIPE_STATUS_NO_SPACE, "Not enough Space")                                      \
  X(10, PIPE_STATUS_TRY_AGAIN, "Try again later")                                     \
  X(11, PIPE_STATUS_INIT_ERROR, "Initialization error")                               \
  X(12, PIPE_STATUS_NOT_IN_TRANSACTION, "Not Supported In Transaction")               \
  X(13, PIPE_STATUS_TABLE_LOCKED, "Table is locked")                                  \
  X(14, PIPE_STATUS_IO_ERROR, "IO Error")                                             \
  X(15, PIPE_STATUS_UNEXPECTED, "Unexpected")                                         \
  X(16, PIPE_STATUS_IN_USE, "Action data entry is being referenced by match entries") \
  X(17, PIPE_STATUS_NOT_SUPPORTED, "Not supported")                                   \
  X(18, PIPE_STATUS_HARDWARE_UPDATE_FAILED, "Updating hardware failed")               \
  X(19, PIPE_STATUS_NO_LEARN_CLIENTS, "No learning clients registered")               \
  X(20, PIPE_STATUS_IDLE_UPDATE_BUSY, "Idle time update state already in progress")   \
  X(21, PIPE_STATUS_DEVICE_LOCKED, "Device Locked")                                   \
  X(22, PIPE_STATUS_INTERNAL_ERROR, "Internal Error")                                 \
  X(23, PIPE_STATUS_TABLE_NOT_FOUND, "Table not found")                               \
  X(24, PIPE_STATUS_UNKNOWN_ERROR, "Unknown Error")

enum pipe_status_code {
#define PIPE_STATUS_ENUMERATOR(code, name, text) name = code,
  PIPE_STATUSES(PIPE_STATUS_ENUMERATOR)
#undef PIPE_STATUS_ENUMERATOR
};

#endif /* PD_PIPE_STATUS_H */
