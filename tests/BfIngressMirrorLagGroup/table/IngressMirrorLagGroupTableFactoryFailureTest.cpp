#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <typeinfo>

#include "FactoryFixture.h"
#include "Vel/Expect.h"

namespace BfIngressMirrorLagGroup {
namespace {

// A refused pipe-scope call, and what it must raise.
struct SetPropertyFailure {
  pipe_status status;
  const std::type_info* exception;
  const char* text;
};

void PrintTo(const SetPropertyFailure& failure, std::ostream* out) {
  *out << "status " << failure.status;
}

class FactoryFailureTest : public FactoryFixture,
                           public testing::WithParamInterface<SetPropertyFailure> {
 protected:
  // What a failed factory call raised.
  struct Raised {
    const std::type_info* type;
    pipe_status status;
    std::string message;
  };

  // Calls the factory with the chip refusing set_property; gives what it
  // raised. BfNotSupported is not a BfTableException to its catchers, so it
  // is caught by name.
  std::optional<Raised> failedFactory(const Vel::Ptr<MbbVaultKey::VaultKeyManager>& keys) {
    EXPECT_EQ(chip.failNext(chipsim_test::kSetProperty.c_str(), GetParam().status, 1), 0);
    try {
      makeTable(keys, status);
    } catch (const BfTable::BfNotSupported& e) {
      return Raised{&typeid(e), e.status(), e.message()};
    } catch (const BfTable::BfTableException& e) {
      return Raised{&typeid(e), e.status(), e.message()};
    }
    ADD_FAILURE() << "no exception";
    return std::nullopt;
  }

  // Nothing the factory made is left alive.
  static void expectNothingLeft() {
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTable>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHelper>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHandles>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHelper::PdLib>().liveObjects(),
              0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupMatchSpec>().liveObjects(), 0u);
  }
};

TEST_P(FactoryFailureTest, ARefusedPipeScopeThrowsByItsStatusAndKeepsNothing) {
  startLog();
  const std::optional<Raised> error = failedFactory(nullptr);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(*error->type, *GetParam().exception);
  EXPECT_EQ(error->status, GetParam().status);
  EXPECT_EQ(error->message,
            std::string("p4_pd_kestro_switch_ingressMirrorLagGroup_set_property() failed: ") +
                GetParam().text);
  EXPECT_EQ(table, nullptr);
  EXPECT_EQ(Vel::Expect::depth(), 0u);
  expectNothingLeft();
  EXPECT_THAT(logLines(),
              testing::ElementsAre(setPropertyLine(1, GetParam().status) + " (injected)"));
  // The status manager is not told of a table that was never made.
  EXPECT_THAT(statusCalls(), testing::IsEmpty());
}

// With shadow tables: nothing is read or adopted, and the key manager is
// held by nothing the factory made.
TEST_P(FactoryFailureTest, ARefusedPipeScopeReadsNoShadowTable) {
  auto keys = shadowKeys();
  const std::uint32_t handle = chipEntryIs(5);
  entryRecordIs(*keys, 1, handle, 5);
  const std::uint32_t references = keys->references();
  startLog();
  ASSERT_TRUE(failedFactory(keys).has_value());
  EXPECT_THAT(keys->calls, testing::IsEmpty());
  EXPECT_EQ(keys->references(), references);
  EXPECT_EQ(chip.calls(chipsim_test::kGetEntry.c_str()), 0);
  expectNothingLeft();
  // The next try succeeds and adopts the record.
  makeTable(keys, status);
  EXPECT_EQ(sessionOfHandle(handle), 5);
}

INSTANTIATE_TEST_SUITE_P(
    Statuses, FactoryFailureTest,
    testing::Values(SetPropertyFailure{2, &typeid(BfTable::BfNoSysResources),
                                       "No system resources"},
                    SetPropertyFailure{9, &typeid(BfTable::BfTableFull), "Not enough Space"},
                    SetPropertyFailure{16, &typeid(BfTable::BfTableException),
                                       "Action data entry is being referenced by match entries"},
                    SetPropertyFailure{17, &typeid(BfTable::BfNotSupported), "Not supported"}),
    [](const testing::TestParamInfo<SetPropertyFailure>& info) {
      return "Status" + std::to_string(info.param.status);
    });

}  // namespace
}  // namespace BfIngressMirrorLagGroup
