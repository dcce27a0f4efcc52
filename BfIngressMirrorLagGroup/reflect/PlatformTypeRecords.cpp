#include "BfIngressMirrorLagGroup/reflect/PlatformTypeRecords.h"

#include "BfnTable/BfnGroupId.h"
#include "BfnTable/BfnMemberId.h"
#include "Vel/GenericCall.h"
#include "Vel/SequenceToValue.h"
#include "Vel/TextParse.h"
#include "Vel/ValueOperations.h"
#include "Vel/ValueToStrep.h"

namespace BfIngressMirrorLagGroup {

namespace {

// The operations of an id type: compared and written as its number, read
// from the whole text of a number.
template <class Id>
struct IdOperations {
  static Vel::GenericValue fromText(const Vel::TypeRecord& type, const Vel::String& text) {
    Vel::String::IteratorConst pos = text.begin();
    std::uint32_t number = 0;
    Vel::sequenceToValue(pos, text.end(), &number);
    Vel::strepToValueEnd(pos, text.end());
    return Vel::GenericValue(type, Id(number));
  }
  static Vel::String toText(const Vel::GenericValue& value) {
    return Vel::valueToStrep(value.ref<Id>().value());
  }
  static std::size_t hash(const Vel::GenericValue& value) { return value.ref<Id>().value(); }

  static Vel::TypeRecord::Operations operations() {
    return {.value = &Vel::ValueOperations<Id>::operation,
            .fromRawPtr = &Vel::ValueOperations<Id>::fromRawPtr,
            .fromText = &fromText,
            .toText = &toText,
            .hash = &hash};
  }
};

constexpr auto object = Vel::TypeRecord::Kind::object;

}  // namespace

const Vel::TypeRecord& bfnMemberIdType() {
  static const Vel::TypeRecord type("BfnTable::BfnMemberId", Vel::TypeRecord::Kind::value, nullptr,
                                    {}, IdOperations<BfnTable::BfnMemberId>::operations());
  return type;
}

const Vel::TypeRecord& bfnGroupIdType() {
  static const Vel::TypeRecord type("BfnTable::BfnGroupId", Vel::TypeRecord::Kind::value, nullptr,
                                    {}, IdOperations<BfnTable::BfnGroupId>::operations());
  return type;
}

const Vel::TypeRecord& vaultKeyManagerType() {
  static const Vel::TypeRecord type("MbbVaultKey::VaultKeyManager", object);
  return type;
}

const Vel::TypeRecord& statusManagerType() {
  static const Vel::TypeRecord type("BfnTableStatusManager::StatusManager", object);
  return type;
}

const Vel::TypeRecord& pdIntfType() {
  static const Vel::TypeRecord type("BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf",
                                    object);
  return type;
}

const Vel::TypeRecord& matchSpecBaseType() {
  static const Vel::TypeRecord type("BfnTable::MatchSpecBase", object);
  return type;
}

}  // namespace BfIngressMirrorLagGroup
