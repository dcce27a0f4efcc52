#include "Vel/EntityType.h"

#include "Vel/BuiltinType.h"
#include "Vel/Entity.h"
#include "Vel/GenericCall.h"
#include "Vel/GenericIf.h"
#include "Vel/TypeNode.h"

namespace Vel {

namespace {

GenericReply entityAttribute(GenericCall& call) {
  const Entity& entity = call.object<const Entity>();
  switch (call.attributeNumber()) {
    case Entity::nameAttribute:
      return call.answerRead(entity.name());
    case Entity::fullNameAttribute:
      return call.answerRead(entity.fullName());
    case Entity::parentAttribute:
      return call.answerRead(entity.parent());
    case Entity::parentAttrNameAttribute:
      return call.answerRead(entity.parentAttrName());
    case Entity::entityAttribute:
      return call.answerRead(Ptr<const Entity>(&entity));
  }
  return call.notOwned();
}

}  // namespace

const TypeRecord& entityType() {
  // `parent` and `entity` refer to entities: the record names itself as their type.
  static const TypeRecord record(
      "Vel::Entity", TypeRecord::Kind::entity, nullptr,
      {
          {"name", BuiltinType<Name>::instance(), Entity::nameAttribute},
          {"fullName", BuiltinType<Name>::instance(), Entity::fullNameAttribute},
          {"parent", record, Entity::parentAttribute},
          {"parentAttrName", BuiltinType<String>::instance(), Entity::parentAttrNameAttribute},
          {"entity", record, Entity::entityAttribute},
      },
      {.attribute = &entityAttribute});
  return record;
}

namespace {

[[maybe_unused]] const bool entityTypeRegistered = [] {
  typeNodeIs(entityType());
  return true;
}();

}  // namespace

}  // namespace Vel
