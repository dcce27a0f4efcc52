// Every shadow table of a restarted host, damaged in every way a careless or
// hostile process could (cut short, grown, its header zeroed, scrambled, each
// of its words flipped, its fields forged with a good checksum, its records
// scrambled, zeroed or forged with a good checksum), under every operation
// that reads it: a reader's walk, the key manager's attach, and a whole restart
// (attach, reconciler, both factories). Each case runs in a child process with
// a deadline: it must end with the operation done or refused with a message,
// never with a signal or a hang; and after a restart that makes damaged tables
// anew, as the agent's does, the next restart must be clean.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "BfPdIngressMirrorLagGroup/BfPdIngressMirrorLagGroupIntf.h"
#include "BfPdIngressMirrorLagGroup/ShadowReconciler.h"
#include "BfnMbbShared/AdtEntryConfig.h"
#include "BfnMbbShared/SelGrpEntryConfig.h"
#include "MbbVaultKey/VaultKeyManager.h"
#include "Pd/PipeStatus.h"
#include "Quill/CorruptionDetectedException.h"
#include "Vault/IterHint.h"
#include "Vault/MbbPostcodef/EntryConfig.h"
#include "Vault/ReadOnlyVaultTable.h"
#include "Vault/SlotControl.h"
#include "Vault/SlotCopy.h"
#include "Vault/TableHeader.h"
#include "Vault/TableLayout.h"
#include "Vault/TableView.h"
#include "Vel/Allocate.h"
#include "support/ChipsimLibrary.h"
#include "support/ScratchShadowBase.h"

namespace BfIngressMirrorLagGroup {
namespace {

using BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf;
using MbbVaultKey::VaultKeyManager;
using Vault::SlotCopy;
using Vault::TableHeader;

constexpr std::uint8_t kDevice = 0;
constexpr std::uint16_t kPipe = P4_PD_ALL_PIPES;
constexpr p4_pd_device_target_t kTarget{kDevice, kPipe};
constexpr std::uint32_t kSession = 1;
constexpr MbbVaultKey::ShadowCapacity kCapacity{64, 32, 8};
constexpr std::uint32_t kMembers = 8;
constexpr std::uint32_t kGroupSize = 4;
constexpr std::uint16_t kSessions = 16;
// How long one case may take before it counts as a hang.
constexpr unsigned kDeadlineSeconds = 20;

// The three shadow tables of a key manager.
enum class Table { entries, members, groups };

std::string tableName(Table table, const std::string& base) {
  switch (table) {
    case Table::entries:
      return VaultKeyManager::mbbTableName(base);
    case Table::members:
      return VaultKeyManager::adtTableName(base);
    case Table::groups:
      return VaultKeyManager::selGrpTableName(base);
  }
  return "";
}

// The bytes of a table's segment, read and written in place.
class SegmentBytes {
 public:
  explicit SegmentBytes(const std::string& name)
      : fd_(shm_open(("/" + name.substr(name.find_first_not_of('/'))).c_str(), O_RDWR, 0)) {}
  ~SegmentBytes() {
    if (fd_ >= 0)
      close(fd_);
  }
  SegmentBytes(const SegmentBytes&) = delete;
  SegmentBytes& operator=(const SegmentBytes&) = delete;

  bool open() const noexcept { return fd_ >= 0; }
  off_t size() const {
    struct stat status {};
    fstat(fd_, &status);
    return status.st_size;
  }
  void resize(off_t size) const { EXPECT_EQ(ftruncate(fd_, size), 0); }
  std::vector<unsigned char> read(off_t offset, std::size_t count) const {
    std::vector<unsigned char> bytes(count);
    EXPECT_EQ(pread(fd_, bytes.data(), count, offset), static_cast<ssize_t>(count));
    return bytes;
  }
  void write(off_t offset, const std::vector<unsigned char>& bytes) const {
    EXPECT_EQ(pwrite(fd_, bytes.data(), bytes.size(), offset), static_cast<ssize_t>(bytes.size()));
  }
  TableHeader header() const {
    TableHeader header{};
    const std::vector<unsigned char> bytes = read(0, sizeof header);
    std::memcpy(&header, bytes.data(), sizeof header);
    return header;
  }
  void headerIs(const TableHeader& header) const {
    std::vector<unsigned char> bytes(sizeof header);
    std::memcpy(bytes.data(), &header, sizeof header);
    write(0, bytes);
  }

 private:
  int fd_;
};

std::vector<unsigned char> randomBytes(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<unsigned char> bytes(count);
  for (unsigned char& byte : bytes)
    byte = static_cast<unsigned char>(random());
  return bytes;
}

// One way of damaging a segment.
struct Damage {
  std::string name;
  std::function<void(const SegmentBytes&)> apply;
};

// A header field changed and its checksum made to match, as a forger would.
Damage forged(const std::string& name, const std::function<void(TableHeader&)>& change) {
  return {name, [change](const SegmentBytes& segment) {
            TableHeader header = segment.header();
            change(header);
            header.headerChecksum = header.expectedChecksum();
            segment.headerIs(header);
          }};
}

// The slots of a table that hold a record, by their control words.
std::vector<std::uint32_t> usedSlots(const SegmentBytes& segment,
                                     const Vault::TableLayout& layout) {
  std::vector<std::uint32_t> used;
  for (std::uint32_t slot = 0; slot < layout.capacity; ++slot) {
    std::uint32_t word = 0;
    std::memcpy(&word,
                segment.read(static_cast<off_t>(layout.slotOffset(slot)), sizeof word).data(),
                sizeof word);
    if (Vault::SlotControl(word).state() != Vault::SlotState::Free)
      used.push_back(slot);
  }
  return used;
}

// The live copy of a slot that holds a record: its header and record bytes.
class LiveCopy {
 public:
  LiveCopy(const SegmentBytes& segment, const Vault::TableLayout& layout, std::uint32_t slot)
      : segment_(segment), slot_(slot) {
    std::uint32_t word = 0;
    std::memcpy(&word,
                segment.read(static_cast<off_t>(layout.slotOffset(slot)), sizeof word).data(),
                sizeof word);
    offset_ = static_cast<off_t>(layout.slotOffset(slot) +
                                 layout.copyOffset(Vault::SlotControl(word).copy()));
    std::memcpy(&head, segment.read(offset_, sizeof head).data(), sizeof head);
    record = segment.read(offset_ + static_cast<off_t>(sizeof head), layout.recordSize);
  }

  // Writes the copy back with the checksum that matches what it now holds.
  void forge() {
    head.checksum = Vault::TableView::copyChecksum(slot_, head, record.data());
    std::vector<unsigned char> bytes(sizeof head);
    std::memcpy(bytes.data(), &head, sizeof head);
    segment_.write(offset_, bytes);
    segment_.write(offset_ + static_cast<off_t>(sizeof head), record);
  }

  SlotCopy head{};
  std::vector<unsigned char> record;

 private:
  const SegmentBytes& segment_;
  std::uint32_t slot_;
  off_t offset_ = 0;
};

// The record of the last slot in use changed and its checksum made to match,
// as a forger would; `first` is the record of the first slot in use (the same
// one when the table holds one record).
Damage forgedRecord(const std::string& name,
                    const std::function<void(LiveCopy& last, const LiveCopy& first)>& change) {
  return {name, [change](const SegmentBytes& segment) {
            const TableHeader header = segment.header();
            const Vault::TableLayout layout =
                *Vault::TableLayout::of(header.recordSize, header.capacity);
            const std::vector<std::uint32_t> used = usedSlots(segment, layout);
            ASSERT_FALSE(used.empty());
            const LiveCopy first(segment, layout, used.front());
            LiveCopy last(segment, layout, used.back());
            change(last, first);
            last.forge();
          }};
}

std::vector<Damage> damages() {
  std::vector<Damage> all = {
      {"CutToNothing", [](const SegmentBytes& s) { s.resize(0); }},
      {"CutInsideTheHeader", [](const SegmentBytes& s) { s.resize(sizeof(TableHeader) / 2); }},
      {"CutToHalf", [](const SegmentBytes& s) { s.resize(s.size() / 2); }},
      {"CutByOneByte", [](const SegmentBytes& s) { s.resize(s.size() - 1); }},
      {"GrownToTwice", [](const SegmentBytes& s) { s.resize(s.size() * 2); }},
      {"ZeroedHeader",
       [](const SegmentBytes& s) {
         s.write(0, std::vector<unsigned char>(sizeof(TableHeader), 0));
       }},
      {"RandomHeader",
       [](const SegmentBytes& s) { s.write(0, randomBytes(sizeof(TableHeader), 7)); }},
      {"RandomRecords",
       [](const SegmentBytes& s) {
         s.write(sizeof(TableHeader),
                 randomBytes(static_cast<std::size_t>(s.size()) - sizeof(TableHeader), 11));
       }},
      {"ZeroedRecords",
       [](const SegmentBytes& s) {
         s.write(sizeof(TableHeader),
                 std::vector<unsigned char>(
                     static_cast<std::size_t>(s.size()) - sizeof(TableHeader), 0));
       }},
      forged("ForgedHugeCapacity", [](TableHeader& h) { h.capacity = 0xFFFFFFFFu; }),
      forged("ForgedLargerCapacity", [](TableHeader& h) { h.capacity *= 2; }),
      forged("ForgedSegmentSize", [](TableHeader& h) { h.segmentSize *= 4; }),
      forged("ForgedSlotSize", [](TableHeader& h) { h.slotSize = 1; }),
      forged("ForgedRecordSize", [](TableHeader& h) { h.recordSize += 8; }),
      forged("ForgedRecordType", [](TableHeader& h) { h.recordType ^= 1; }),
      forged("RecordCountPastTheCapacity", [](TableHeader& h) { h.recordCount = 0xFFFFFFFFu; }),
      forgedRecord("ForgedRecordBytes",
                   [](LiveCopy& last, const LiveCopy&) {
                     last.record = randomBytes(last.record.size(), 13);
                   }),
      forgedRecord("ForgedKeyOfAnotherSlot",
                   [](LiveCopy& last, const LiveCopy&) { last.head.key ^= 1; }),
      forgedRecord("ForgedKeyOutOfRange",
                   [](LiveCopy& last, const LiveCopy&) { last.head.key = ~std::uint64_t{0}; }),
      forgedRecord("ForgedKeyOfTheFirstRecord",
                   [](LiveCopy& last, const LiveCopy& first) { last.head.key = first.head.key; }),
      forgedRecord("ForgedCopyState",
                   [](LiveCopy& last, const LiveCopy&) { last.head.state = 0xff; }),
      forgedRecord("ForgedSequenceFromTheFuture",
                   [](LiveCopy& last, const LiveCopy&) { last.head.sequence = ~std::uint64_t{0}; }),
  };
  // Each 32-bit word of the header, all its bits flipped.
  for (std::size_t word = 0; word < sizeof(TableHeader) / 4; ++word) {
    all.push_back({"HeaderWord" + std::to_string(word) + "Flipped", [word](const SegmentBytes& s) {
                     std::vector<unsigned char> bytes = s.read(static_cast<off_t>(word * 4), 4);
                     for (unsigned char& byte : bytes)
                       byte = static_cast<unsigned char>(~byte);
                     s.write(static_cast<off_t>(word * 4), bytes);
                   }});
  }
  return all;
}

// Runs `operation` with a deadline; exits 0 when it is done or refused with a
// message, 1 when refused without one. A signal or the deadline ends the
// process otherwise, which the caller's EXPECT_EXIT reports.
[[noreturn]] void runToEnd(const std::function<void()>& operation) {
  alarm(kDeadlineSeconds);
  int status = 0;
  try {
    operation();
  } catch (const std::exception& e) {
    status = std::strlen(e.what()) == 0 ? 1 : 0;
  }
  std::fflush(nullptr);
  _exit(status);
}

// Runs `operation` with a deadline; exits 0 when it is done, 2 (saying why)
// when it throws.
[[noreturn]] void runToSuccess(const std::function<void()>& operation) {
  alarm(kDeadlineSeconds);
  int status = 0;
  try {
    operation();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
    status = 2;
  }
  std::fflush(nullptr);
  _exit(status);
}

template <class R>
void walk(const std::string& name) {
  Vault::ReadOnlyVaultTable<R> reader(name);
  R record{};
  Vault::IterHint hint;
  for (bool more = reader.first(record, hint); more; more = reader.next(record, hint)) {
  }
}

class ShadowDamageMatrixTest : public testing::TestWithParam<std::tuple<Table, std::size_t>> {
 protected:
  void SetUp() override {
    chipsim_config config{};
    chip.configDefault(&config);
    ASSERT_EQ(chip.configure(&config), 0);
    ASSERT_EQ(chip.attach(nullptr), 0);
    record();
    const SegmentBytes segment(tableName(table(), base.str()));
    ASSERT_TRUE(segment.open());
    damage().apply(segment);
  }

  Table table() const { return std::get<0>(GetParam()); }
  Damage damage() const { return damages().at(std::get<1>(GetParam())); }

  // Members, a group of four and entries on both, recorded as an earlier
  // instance of the host records them; its key manager goes at the end.
  void record() const {
    const auto keys = Vel::allocate<VaultKeyManager>(base.str(), kCapacity);
    const auto pd =
        Vel::allocate<BfPdIngressMirrorLagGroupIntf>(CHIPSIM_LIBRARY, chip.handle, kSession);
    pd->vaultKeyManagerIs(keys);
    std::vector<std::uint32_t> members(kMembers);
    for (std::uint32_t id = 0; id < kMembers; ++id) {
      keys->allocAnon(id + 1);
      const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t action{
          static_cast<std::uint16_t>(id)};
      ASSERT_EQ(
          pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
              kSession, kTarget, &action, &members[id]),
          PIPE_STATUS_SUCCESS);
    }
    keys->allocAnon(1);
    std::uint32_t group = 0;
    ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(kSession, kTarget,
                                                                              kGroupSize, &group),
              PIPE_STATUS_SUCCESS);
    for (std::uint32_t slot = 0; slot < kGroupSize; ++slot) {
      ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group(
                    kSession, kDevice, group, members[slot]),
                PIPE_STATUS_SUCCESS);
    }
    for (std::uint16_t session = 0; session < kSessions; ++session) {
      auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
      match->ingMirrorMdMirrorSessionIs(session);
      keys->alloc(match, false);
      const p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t spec{session};
      std::uint32_t entry = 0;
      const pipe_status status =
          session % 2 == 0 ? pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector(
                                 kSession, kTarget, &spec, group, &entry)
                           : pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(
                                 kSession, kTarget, &spec, members[session % kMembers], &entry);
      ASSERT_EQ(status, PIPE_STATUS_SUCCESS);
    }
  }

  // The restart of a host on the damaged tables: attach, settle, adopt.
  void restart() const { restartOn(Vel::allocate<VaultKeyManager>(base.str(), kCapacity)); }

  // The restart of the reference agent: tables whose header is damaged are
  // made anew before the rest of the restart.
  void restartAsTheAgent() const {
    Vel::Ptr<VaultKeyManager> keys;
    try {
      keys = Vel::allocate<VaultKeyManager>(base.str(), kCapacity);
    } catch (const Quill::CorruptionDetectedException&) {
      VaultKeyManager::unlink(base.str());
      keys = Vel::allocate<VaultKeyManager>(base.str(), kCapacity);
    }
    restartOn(keys);
  }

  void restartOn(const Vel::Ptr<VaultKeyManager>& keys) const {
    {
      const auto pd =
          Vel::allocate<BfPdIngressMirrorLagGroupIntf>(CHIPSIM_LIBRARY, chip.handle, kSession);
      BfPdIngressMirrorLagGroup::ShadowReconciler(*keys, *pd, kDevice).reconcile();
    }
    const auto table = ingressMirrorLagGroupTableFactory(keys, nullptr, chip.handle, kSession,
                                                         kDevice, kPipe, CHIPSIM_LIBRARY);
    const auto profile = ingressMirrorLagGroupActionProfileFactory(table);
  }

  void readTable() const {
    const std::string name = tableName(table(), base.str());
    switch (table()) {
      case Table::entries:
        return walk<Vault::MbbPostcodef::EntryConfig>(name);
      case Table::members:
        return walk<BfnMbbShared::AdtEntryConfig>(name);
      case Table::groups:
        return walk<BfnMbbShared::SelGrpEntryConfig>(name);
    }
  }

  const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
  shadow_test::ScratchShadowBase base{"damage-matrix"};
};

TEST_P(ShadowDamageMatrixTest, AReaderWalksOrRefusesWithAMessage) {
  EXPECT_EXIT(runToEnd([this] { readTable(); }), testing::ExitedWithCode(0), "");
}

TEST_P(ShadowDamageMatrixTest, TheKeyManagerAttachesOrRefusesWithAMessage) {
  EXPECT_EXIT(runToEnd([this] { Vel::allocate<VaultKeyManager>(base.str(), kCapacity); }),
              testing::ExitedWithCode(0), "");
}

TEST_P(ShadowDamageMatrixTest, ARestartAdoptsOrRefusesWithAMessage) {
  EXPECT_EXIT(runToEnd([this] { restart(); }), testing::ExitedWithCode(0), "");
}

TEST_P(ShadowDamageMatrixTest, TheRestartAfterTheDamagedOneIsClean) {
  EXPECT_EXIT(runToSuccess([this] { restartAsTheAgent(); }), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(runToSuccess([this] { restart(); }), testing::ExitedWithCode(0), "");
}

std::string caseName(const testing::TestParamInfo<std::tuple<Table, std::size_t>>& info) {
  static const char* const tables[] = {"Entries", "Members", "Groups"};
  return std::string(tables[static_cast<int>(std::get<0>(info.param))]) +
         damages().at(std::get<1>(info.param)).name;
}

INSTANTIATE_TEST_SUITE_P(EveryTableEveryDamage, ShadowDamageMatrixTest,
                         testing::Combine(testing::Values(Table::entries, Table::members,
                                                          Table::groups),
                                          testing::Range<std::size_t>(0, damages().size())),
                         caseName);

}  // namespace
}  // namespace BfIngressMirrorLagGroup
