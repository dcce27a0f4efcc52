#pragma once

#include <Pd/KestroSwitchPd.h>

namespace chipsim {

// The SDK statuses the chip gives.
enum Status : pipe_status {
  kSuccess = 0,
  kNoSystemResources = 2,  // the chip's memory could not be had
  kInvalidArgument = 3,
  kAlreadyExists = 4,  // duplicate key, member already in the group
  kNotFound = 6,       // unknown handle
  kNoSpace = 9,        // table, profile or group full
  kUnexpected = 15,    // the chip's lock could not be taken
  kInUse = 16,         // member or group still used by an entry or a group
};

}  // namespace chipsim
