#include "BfIngressMirrorLagGroup/reflect/AttributePath.h"

#include <exception>
#include <vector>

#include "Vel/AttributeRecord.h"
#include "Vel/Exception.h"
#include "Vel/GenericIf.h"
#include "Vel/RangeException.h"
#include "Vel/TypeRecord.h"

namespace BfIngressMirrorLagGroup {

namespace {

// One step of a path: an attribute name and, for a collection element, the
// text of its key.
struct Step {
  std::string_view name;
  std::string_view key;
  bool keyed = false;
};

[[noreturn]] void fail(std::string_view path, const Vel::String& what) {
  Vel::throwRangeException(Vel::String("Attribute path '") + Vel::String(path) + "': " + what);
}

std::vector<Step> stepsOf(std::string_view path) {
  std::vector<Step> steps;
  std::size_t start = 0;
  while (start <= path.size()) {
    const std::size_t slash = path.find('/', start);
    std::string_view part = path.substr(
        start, slash == std::string_view::npos ? std::string_view::npos : slash - start);
    Step step;
    const std::size_t open = part.find('[');
    if (open != std::string_view::npos) {
      if (part.back() != ']')
        fail(path, "a key in brackets must end the step '" + Vel::String(part) + "'");
      step.keyed = true;
      step.key = part.substr(open + 1, part.size() - open - 2);
      part = part.substr(0, open);
    }
    if (part.empty())
      fail(path, "an empty attribute name");
    step.name = part;
    steps.push_back(step);
    if (slash == std::string_view::npos)
      break;
    start = slash + 1;
  }
  return steps;
}

// The value of `text` as a value of `type`, or a failure naming the path.
Vel::GenericValue valueOf(std::string_view path, const Vel::TypeRecord& type,
                          const Vel::String& text) {
  try {
    return type.valueFromText(text);
  } catch (const Vel::Exception& e) {
    fail(path, "'" + text + "' is not a value of " + type.name() + ": " + e.message());
  }
}

// The attribute of `step` on `object`, with the key read for its type.
struct Located {
  const Vel::AttributeRecord* attribute;
  Vel::GenericArgs args;
};

Located locate(std::string_view path, Vel::GenericIf& object, const Step& step) {
  const Vel::AttributeRecord* attribute = object.type().attribute(step.name);
  if (attribute == nullptr) {
    fail(path,
         "type " + object.type().name() + " has no attribute '" + Vel::String(step.name) + "'");
  }
  if (step.keyed != attribute->isCollection()) {
    fail(path, "'" + Vel::String(step.name) +
                   (step.keyed ? "' is not a collection" : "' is a collection: give a key"));
  }
  if (!step.keyed)
    return {attribute, {}};
  return {attribute, {valueOf(path, *attribute->keyType(), Vel::String(step.key))}};
}

// Reads `step` of `object`; a null answer is a failure naming the step.
Vel::GenericValue read(std::string_view path, Vel::GenericIf& object, const Step& step) {
  const Located located = locate(path, object, step);
  Vel::GenericValue value =
      object.attribute(*located.attribute, Vel::GenericIf::opRead, located.args);
  if (value.isNull())
    fail(path, "'" + Vel::String(step.name) +
                   (step.keyed ? "[" + Vel::String(step.key) + "]" : "") + "' is absent");
  return value;
}

// The object or value that holds the last step of `steps`.
Vel::GenericIf holderOf(std::string_view path, const Vel::Ptr<const Vel::PtrInterface>& root,
                        const std::vector<Step>& steps) {
  if (root == nullptr)
    fail(path, "no object to start from");
  Vel::GenericIf current(root);
  for (std::size_t i = 0; i + 1 < steps.size(); ++i)
    current = Vel::GenericIf(read(path, current, steps[i]));
  return current;
}

// An object that is not an entity (an action spec, the helper) is shared by
// whoever holds it and has no notifiees: changing it in place would change
// what its holder reads without the holder hearing of it, so the chip would
// no longer match. Such objects are replaced whole through their holder.
[[noreturn]] void refuseInPlaceChange(std::string_view path, const std::vector<Step>& steps) {
  const Step& held = steps[steps.size() - 2];
  fail(path, "'" + Vel::String(steps.back().name) + "' cannot be set in place: '" +
                 Vel::String(held.name) + "' is shared by its holder, which would not hear of it");
}

}  // namespace

Vel::String AttributePath::get(const Vel::Ptr<const Vel::PtrInterface>& root,
                               std::string_view path) {
  const std::vector<Step> steps = stepsOf(path);
  Vel::GenericIf holder = holderOf(path, root, steps);
  return Vel::GenericIf(read(path, holder, steps.back())).text();
}

void AttributePath::set(const Vel::Ptr<Vel::PtrInterface>& root, std::string_view path,
                        const Vel::String& text) {
  const std::vector<Step> steps = stepsOf(path);
  Vel::GenericIf holder = holderOf(path, root, steps);
  const Located located = locate(path, holder, steps.back());
  if (located.attribute->isCollection() || !located.attribute->isReadWrite())
    fail(path, "'" + Vel::String(steps.back().name) + "' cannot be set");
  if (steps.size() > 1 && holder.type().kind() == Vel::TypeRecord::Kind::object)
    refuseInPlaceChange(path, steps);
  holder.attribute(*located.attribute, Vel::GenericIf::opWrite,
                   {valueOf(path, located.attribute->type(), text)});
}

}  // namespace BfIngressMirrorLagGroup
