#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "Vel/Exception.h"
#include "Vel/GenericIf.h"
#include "Vel/GenericNotifiee.h"
#include "support/ChipsimLibrary.h"
#include "support/PdFunctionNames.h"

namespace BfIngressMirrorLagGroup {

// The message of the exception of type E that `run` raises; "no exception"
// when it raises none.
template <class E, class Run>
std::string messageOf(Run run) {
  try {
    run();
  } catch (const E& e) {
    return e.what();
  }
  return "no exception";
}

// Builtin values for reflective calls.
Vel::GenericValue u16(std::uint16_t v);
Vel::GenericValue u32(std::uint32_t v);
Vel::GenericValue boolean(bool v);
// A key of the collection attribute `name` of `object`, read from its text.
Vel::GenericValue keyOf(const Vel::GenericIf& object, std::string_view name,
                        const Vel::String& text);
// The action type's one enumerator as a reflective value.
Vel::GenericValue selectorActionType();

// Notes every raw notification it gets: "259" for a key-less one, "258:10"
// with the key's text for a keyed one; and the type of every key.
class RawRecorder : public Vel::GenericNotifiee {
 public:
  void onRawAttribute(unsigned attributeNumber, const Vel::GenericValue* key) override;

  std::vector<std::string> seen;
  std::vector<std::string> keyTypes;
};

// The action profile and its state machine on device 3, pipe 2, bound to a
// fresh private chip through the chip model's library (loaded with dlopen as
// a host loads a PD library). The PD object's session is 7 and the state
// machine's sessionHandle 9, so that every logged call shows which one it
// took. Each test ends by checking that the chip is coherent; the state
// machine is dropped then (deleting what is left in the chip), and no
// reactor, entity or helper may be left alive.
class ReflectFixture : public testing::Test {
 protected:
  using Sm = IngressMirrorLagGroupActionProfileSm;

  static constexpr std::uint8_t kDevice = 3;
  static constexpr std::uint16_t kPipe = 2;
  static constexpr std::uint32_t kPdSession = 7;
  static constexpr std::uint32_t kSmSession = 9;

  void SetUp() override;
  void TearDown() override;

  // Makes the state machine following the profile.
  void makeSm();

  // A setLagMemberSelector action spec, and an entry holding one.
  static Vel::Ptr<const IngressMirrorLagGroupBaseActionProfileSpec> selectorAction(
      std::uint16_t selector);
  static Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> entryOf(std::uint32_t memberId,
                                                                   std::uint16_t selector);
  // Configures member `memberId` with `selector` in the profile.
  Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> memberIs(std::uint32_t memberId,
                                                             std::uint16_t selector);
  // Configures group `groupId` of `size` with its initial member.
  Vel::Ptr<IngressMirrorLagGroupGroup> groupIs(std::uint32_t groupId, unsigned size,
                                               std::uint32_t initialMemberId);

  // The chip's handles of a configured member and group.
  std::uint32_t memberHandle(std::uint32_t memberId) const;
  std::uint32_t groupHandle(std::uint32_t groupId) const;

  // Forgets the chip's call log.
  void startLog() const;
  static std::vector<std::string> logLines();
  // The chip's check: empty when the chip is coherent.
  static std::string chipFault();

  // Log lines of the member and group PD calls, as the chip writes them.
  static std::string addMemberLine(std::uint16_t selector, std::uint32_t handle);
  static std::string modifyMemberLine(std::uint32_t handle, std::uint16_t selector,
                                      std::uint32_t session = kSmSession);
  static std::string delMemberLine(std::uint32_t handle);
  static std::string createGroupLine(std::uint32_t size, std::uint32_t handle);
  static std::string delGroupLine(std::uint32_t handle);
  static std::string addMemberToGroupLine(std::uint32_t group, std::uint32_t member);
  static std::string delMemberFromGroupLine(std::uint32_t group, std::uint32_t member);
  static std::string memberStateLine(std::uint32_t group, std::uint32_t member, int state);

  const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
  void* chipHandle = nullptr;
  Vel::Ptr<IngressMirrorLagGroupTableHelper> helper;
  Vel::Ptr<IngressMirrorLagGroupActionProfile> profile;
  Vel::Ptr<Sm> sm;
};

}  // namespace BfIngressMirrorLagGroup
