#pragma once

#include <Pd/KestroSwitchPd.h>
#include <Pd/PipeStatus.h>

namespace chipsim {

// The SDK statuses the chip gives.
enum Status : pipe_status {
  kSuccess = PIPE_STATUS_SUCCESS,
  kNoSystemResources = PIPE_STATUS_NO_SYSTEM_RESOURCES,  // the chip's memory could not be had
  kInvalidArgument = PIPE_STATUS_INVALID_ARGUMENT,
  kAlreadyExists = PIPE_STATUS_ALREADY_EXISTS,  // duplicate key, member already in the group
  kNotFound = PIPE_STATUS_NOT_FOUND,            // unknown handle
  kNoSpace = PIPE_STATUS_NO_SPACE,              // table, profile or group full
  kUnexpected = PIPE_STATUS_UNEXPECTED,  // the chip's lock could not be taken, or it is damaged
  kInUse = PIPE_STATUS_IN_USE,           // member or group still used by an entry or a group
};

}  // namespace chipsim
