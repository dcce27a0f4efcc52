#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "ManagerEvents.h"
#include "OrderedKeyManager.h"
#include "OrderedStatusManager.h"
#include "RegistrySnapshot.h"
#include "support/ChipsimLibrary.h"
#include "support/PdFunctionNames.h"

namespace BfIngressMirrorLagGroup {

// A match table on device 3, pipe 2, session 7, bound to a fresh private chip
// (made on device 3) through the chip model's library, loaded with dlopen as a
// host loads a PD library. The status manager and the key manager record every
// call. Each test ends by checking that the chip is coherent and that no table,
// helper or match spec is left alive.
class TableFixture : public testing::Test {
 protected:
  static constexpr std::uint8_t kDevice = 3;
  static constexpr std::uint16_t kPipe = 2;
  static constexpr std::uint32_t kSession = 7;
  // The chip gives its default entry the handle after its last match entry.
  static constexpr std::uint32_t kDefaultEntryHandle = 65537;

  void SetUp() override;
  void TearDown() override;

  // A table on another pipe of the same chip and device, sharing nothing else.
  Vel::Ptr<IngressMirrorLagGroupTable> tableOnPipe(std::uint16_t pipe);

  // A new match-spec object for a mirror session.
  static Vel::Ptr<const IngressMirrorLagGroupMatchSpec> matchOf(std::uint16_t session);
  static IngressMirrorLagGroupTableEntry memberEntry(
      const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match, std::uint32_t memberId);
  static IngressMirrorLagGroupTableEntry groupEntry(
      const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match, std::uint32_t groupId);

  // A member or group made in the chip directly and registered under its id;
  // gives its SDK handle.
  std::uint32_t memberIs(std::uint32_t memberId, std::uint16_t selector);
  std::uint32_t groupIs(std::uint32_t groupId);

  IngressMirrorLagGroupTableHandles& registry() const { return *helper->sdkHandles(); }
  RegistrySnapshot snapshot() const;

  // Forgets the chip's call log and the managers' calls: what a test checks
  // starts here.
  void startLog();
  static std::vector<std::string> logLines();
  static std::string lastLine();

  // The chip's check: empty when the chip is coherent.
  static std::string chipFault();

  const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
  void* chipHandle = nullptr;
  ManagerEvents events;
  Vel::Ptr<IngressMirrorLagGroupTableHelper> helper;
  Vel::Ptr<OrderedStatusManager> statusManager;
  Vel::Ptr<OrderedKeyManager> keyManager;
  Vel::Ptr<IngressMirrorLagGroupTable> table;
};

// "sess=7, dev=3, pipe=0x2": the session and device target of a creating call.
std::string targetArgs(std::uint32_t session, std::uint8_t device, std::uint16_t pipe);

}  // namespace BfIngressMirrorLagGroup
