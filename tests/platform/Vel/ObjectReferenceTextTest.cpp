#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "TextTestSupport.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/Format.h"
#include "Vel/ObjectReference.h"
#include "Vel/RangeException.h"
#include "Vel/SequenceToValue.h"
#include "Vel/TextParse.h"
#include "Vel/TypeRecord.h"
#include "Vel/ValueToStrep.h"

namespace {

using TextTestSupport::messageOf;

const Vel::TypeRecord& nodeType() {
  static const Vel::TypeRecord type("Test::Node", Vel::TypeRecord::Kind::object);
  return type;
}

class Node : public Vel::PtrInterface {
 public:
  const Vel::TypeRecord* fwkType() const override { return &nodeType(); }
};

class SpecialNode : public Node {};

// An object without a type record.
class Plain : public Vel::PtrInterface {};

std::string idText(const Vel::PtrInterface* object) {
  return std::to_string(Vel::ObjectReference::idOf(object));
}

// Reads a reference to a T from `text`; *consumed receives how far the reader went.
template <class T>
Vel::Ptr<T> referenceIn(const Vel::String& text, std::size_t* consumed = nullptr) {
  return TextTestSupport::parsed<Vel::Ptr<T>>(text, consumed);
}

// Reads a reference to a Node from `text`, expecting a RangeException; checks
// that the position and the target were left alone and returns the message.
std::string referenceFailure(const Vel::String& text) {
  const Vel::Ptr<Node> keep = Vel::allocate<Node>();
  return TextTestSupport::rangeFailure<Vel::Ptr<Node>>(text, keep);
}

class ObjectReferenceTextTest : public ::testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Node>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<SpecialNode>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Plain>().liveObjects(), 0u);
  }
};

TEST_F(ObjectReferenceTextTest, NullIsNone) {
  EXPECT_EQ(Vel::valueToStrepOfRawPtr(nullptr, &nodeType()), "None");
  Vel::Ptr<Node> target = Vel::allocate<Node>();
  const Vel::String text = "None, x";
  Vel::String::IteratorConst pos = text.begin();
  Vel::sequenceToValue(pos, text.end(), &target);
  EXPECT_EQ(target, nullptr);
  EXPECT_EQ(pos - text.begin(), 4);
}

TEST_F(ObjectReferenceTextTest, ReferenceNamesTheTypeAndTheId) {
  const Vel::Ptr<Node> node = Vel::allocate<Node>();
  const Vel::String text = Vel::valueToStrepOfRawPtr(node.get(), &nodeType());
  EXPECT_EQ(text, "Ref('Test::Node', " + idText(node.get()) + ")");
  EXPECT_EQ(Vel::valueToStrepOfRawPtr(node.get(), &nodeType()), text);
}

TEST_F(ObjectReferenceTextTest, DistinctObjectsHaveDistinctTexts) {
  const Vel::Ptr<Node> a = Vel::allocate<Node>();
  const Vel::Ptr<Node> b = Vel::allocate<Node>();
  EXPECT_NE(Vel::valueToStrepOfRawPtr(a.get(), &nodeType()),
            Vel::valueToStrepOfRawPtr(b.get(), &nodeType()));
}

TEST_F(ObjectReferenceTextTest, TypeNameFallsBackToTheObjectsOwnRecord) {
  const Vel::Ptr<Node> node = Vel::allocate<Node>();
  EXPECT_EQ(Vel::valueToStrepOfRawPtr(node.get(), nullptr),
            "Ref('Test::Node', " + idText(node.get()) + ")");
  const Vel::Ptr<Plain> plain = Vel::allocate<Plain>();
  EXPECT_EQ(Vel::valueToStrepOfRawPtr(plain.get(), nullptr),
            "Ref('Vel::PtrInterface', " + idText(plain.get()) + ")");
}

TEST_F(ObjectReferenceTextTest, TypeNamesAreQuotedWithEscapes) {
  const Vel::TypeRecord oddType("Test::It's", Vel::TypeRecord::Kind::object);
  const Vel::Ptr<Node> node = Vel::allocate<Node>();
  const Vel::String text = Vel::valueToStrepOfRawPtr(node.get(), &oddType);
  EXPECT_EQ(text, "Ref('Test::It\\'s', " + idText(node.get()) + ")");
  EXPECT_EQ(referenceIn<Node>(text), node);
}

TEST_F(ObjectReferenceTextTest, NoAddressIsWritten) {
  const Vel::Ptr<Node> node = Vel::allocate<Node>();
  const Vel::String text = Vel::valueToStrepOfRawPtr(node.get(), &nodeType());
  const auto address = reinterpret_cast<std::uintptr_t>(node.get());
  for (const std::string& form :
       {Vel::format("%p", static_cast<const void*>(node.get())), Vel::format("%lx", address),
        Vel::format("%lX", address), Vel::format("%lu", address)}) {
    EXPECT_EQ(text.find(form), std::string::npos) << form << " in " << text;
  }
}

TEST_F(ObjectReferenceTextTest, ReadingGivesTheVeryObject) {
  const Vel::Ptr<Node> node = Vel::allocate<Node>();
  const Vel::String text = Vel::valueToStrepOfRawPtr(node.get(), &nodeType());
  std::size_t consumed = 0;
  const Vel::Ptr<Node> again = referenceIn<Node>(text + ", rest", &consumed);
  EXPECT_EQ(again.get(), node.get());
  EXPECT_EQ(consumed, text.size());
  EXPECT_EQ(node->references(), 2u);
  EXPECT_EQ(referenceIn<const Node>(text).get(), node.get());
  EXPECT_EQ(referenceIn<const Vel::PtrInterface>(text).get(), node.get());
}

TEST_F(ObjectReferenceTextTest, DerivedObjectIsReadAsItsBase) {
  const Vel::Ptr<SpecialNode> special = Vel::allocate<SpecialNode>();
  const Vel::String text = Vel::valueToStrepOfRawPtr(special.get(), &nodeType());
  EXPECT_EQ(referenceIn<Node>(text).get(), special.get());
  EXPECT_EQ(referenceIn<const SpecialNode>(text).get(), special.get());
}

TEST_F(ObjectReferenceTextTest, ObjectOfAnotherTypeIsRefused) {
  const Vel::Ptr<Plain> plain = Vel::allocate<Plain>();
  const Vel::String text = Vel::valueToStrepOfRawPtr(plain.get(), nullptr);
  EXPECT_EQ(referenceFailure(text), "Ref('Vel::PtrInterface', " + idText(plain.get()) +
                                        ") names an object of another type");
  const Vel::Ptr<Node> node = Vel::allocate<Node>();
  const Vel::String nodeText = Vel::valueToStrepOfRawPtr(node.get(), &nodeType());
  EXPECT_EQ(TextTestSupport::rangeFailure<Vel::Ptr<const SpecialNode>>(nodeText),
            "Ref('Test::Node', " + idText(node.get()) + ") names an object of another type");
  EXPECT_EQ(plain->references(), 1u);
}

TEST_F(ObjectReferenceTextTest, TheWrittenTypeNameIsNotTrusted) {
  const Vel::Ptr<Node> node = Vel::allocate<Node>();
  EXPECT_EQ(referenceIn<Node>("Ref('Test::Other', " + idText(node.get()) + ")"), node);
}

TEST_F(ObjectReferenceTextTest, DeadObjectIsRefused) {
  Vel::Ptr<Node> node = Vel::allocate<Node>();
  const Vel::String text = Vel::valueToStrepOfRawPtr(node.get(), &nodeType());
  const std::string id = idText(node.get());
  node = nullptr;
  EXPECT_EQ(referenceFailure(text), "Ref('Test::Node', " + id + ") names no live object");
}

TEST_F(ObjectReferenceTextTest, UnknownIdIsRefused) {
  EXPECT_EQ(referenceFailure("Ref('Test::Node', 0)"), "Ref('Test::Node', 0) names no live object");
  EXPECT_EQ(referenceFailure("Ref('Test::Node', 0xffffffffffffffff)"),
            "Ref('Test::Node', 18446744073709551615) names no live object");
}

TEST_F(ObjectReferenceTextTest, AddressOfALiveObjectIsNeverReadAsAReference) {
  const Vel::Ptr<Node> node = Vel::allocate<Node>();
  Vel::ObjectReference::idOf(node.get());
  const auto address = reinterpret_cast<std::uintptr_t>(node.get());
  const std::string decimal = std::to_string(address);
  // In the place of the id, in decimal and in hex, the address names nothing.
  EXPECT_EQ(referenceFailure("Ref('Test::Node', " + decimal + ")"),
            "Ref('Test::Node', " + decimal + ") names no live object");
  EXPECT_EQ(referenceFailure(Vel::format("Ref('Test::Node', %p)", static_cast<void*>(node.get()))),
            "Ref('Test::Node', " + decimal + ") names no live object");
  // Alone, in any of the forms a pointer is printed in, it is no reference at all.
  const std::string pointer = Vel::format("%p", static_cast<void*>(node.get()));
  EXPECT_EQ(referenceFailure(pointer), "expected a reference, found '" + pointer + "'");
  EXPECT_EQ(referenceFailure(decimal), "expected a reference, found '" + decimal + "'");
  EXPECT_EQ(node->references(), 1u);
}

TEST_F(ObjectReferenceTextTest, ObjectHeldByNoReferenceIsRefused) {
  const Node unowned;
  const Vel::String text = Vel::valueToStrepOfRawPtr(&unowned, nullptr);
  EXPECT_EQ(referenceFailure(text),
            "Ref('Test::Node', " + idText(&unowned) + ") names no live object");
  EXPECT_EQ(unowned.references(), 0u);
}

TEST_F(ObjectReferenceTextTest, MalformedReferencesAreRefused) {
  EXPECT_EQ(referenceFailure(""), "expected a reference, found end of text");
  EXPECT_EQ(referenceFailure("Nonex"), "expected a reference, found 'Nonex'");
  EXPECT_EQ(referenceFailure("0x7f001234"), "expected a reference, found '0x7f001234'");
  EXPECT_EQ(referenceFailure("Ref"), "expected a reference, found 'Ref'");
  EXPECT_EQ(referenceFailure("Ref(Test::Node, 1)"), "expected a quoted string, found 'Test'");
  EXPECT_EQ(referenceFailure("Ref('Test::Node' 1)"), "expected ', ', found ' 1'");
  EXPECT_EQ(referenceFailure("Ref('Test::Node', x)"),
            "expected an unsigned 64-bit number, found 'x'");
  EXPECT_EQ(referenceFailure("Ref('Test::Node', -1)"),
            "expected an unsigned 64-bit number, found '-1'");
  EXPECT_EQ(referenceFailure("Ref('Test::Node', 1"), "expected ')', found end of text");
  EXPECT_EQ(referenceFailure("Ref('Test::Node', 1]"), "expected ')', found ']'");
}

TEST_F(ObjectReferenceTextTest, AttributeReaderNamesTheAttribute) {
  Vel::Ptr<const Node> match;
  const Vel::String text = "Ref('Test::Node', 0)";
  Vel::String::IteratorConst pos = text.begin();
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [&] { Vel::deserializeAttr(pos, text.end(), "match", &match); }),
            "attribute 'match': Ref('Test::Node', 0) names no live object");
  const Vel::Ptr<Node> node = Vel::allocate<Node>();
  const Vel::String good = Vel::valueToStrepOfRawPtr(node.get(), &nodeType());
  pos = good.begin();
  Vel::deserializeAttr(pos, good.end(), "match", &match);
  EXPECT_EQ(match.get(), node.get());
}

}  // namespace
