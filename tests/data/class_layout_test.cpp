#include <vestra/vestra_data.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "support/test.h"

namespace Oza {
namespace {

// Hosts are compiled against the classes as they stand: their sizes, their fields'
// places and the order of their virtual operations cannot change.

static_assert(sizeof(VestraDataInterface) == 8);
static_assert(sizeof(VestraParentData) == 136);
static_assert(sizeof(VestraAddData) == 80);

static_assert(std::is_base_of_v<VestraDataInterface, VestraParentData>);
static_assert(std::is_base_of_v<VestraDataInterface, VestraAddData>);
static_assert(std::is_abstract_v<VestraDataInterface>);
static_assert(std::has_virtual_destructor_v<VestraDataInterface>);

static_assert(std::is_same_v<std::underlying_type_t<Vestra::SectionType>, std::uint32_t>);
static_assert(std::is_same_v<std::underlying_type_t<Vestra::ProductType>, std::uint32_t>);

TEST(Enumerations, HaveTheirNumbers) {
  EXPECT_EQ(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, 0U);
  EXPECT_EQ(Vestra::USER_ENVIRONMENT, 1U);
  EXPECT_EQ(Vestra::KELVO_COMMAND_LINE_OPTIONS, 2U);
  EXPECT_EQ(Vestra::KELVO_USAGE, 3U);
  EXPECT_EQ(Vestra::TAVLO_COMMAND_LINE_OPTIONS, 4U);
  EXPECT_EQ(Vestra::TAVLO_USAGE, 5U);
  EXPECT_EQ(Vestra::KELVO, 0U);
  EXPECT_EQ(Vestra::KELVO_ALT, 1U);
  EXPECT_EQ(Vestra::TAVLO, 2U);
}

using TextOperation = std::string (*)(VestraDataInterface*);
using DeletingDestructor = void (*)(VestraDataInterface*);

/// What stands in a slot of an object's table of virtual operations, which the
/// object's first word points to.
template <typename Operation>
Operation slot(VestraDataInterface* node, std::size_t position) {
  return (*reinterpret_cast<Operation**>(node))[position];
}

TEST(VirtualOperations, StandInTheirOrder) {
  VestraParentData context("context", "client", true);
  VestraAddData item("k", "v", &context);
  context.addChild(new VestraAddData("k", "v", &context));
  for (VestraDataInterface* node :
       {static_cast<VestraDataInterface*>(&item), static_cast<VestraDataInterface*>(&context)}) {
    EXPECT_EQ(slot<TextOperation>(node, 0)(node),
              "vestra_add_data -client client -key k -value \"v\" -context \"context\"\n");
    EXPECT_EQ(slot<TextOperation>(node, 1)(node), "kvclientcontext");
    EXPECT_EQ(slot<TextOperation>(node, 2)(node), "client");
  }
}

/// An item that notes its end.
class NotedItem : public VestraAddData {
 public:
  NotedItem(VestraParentData* context, bool& end) : VestraAddData("k", "v", context), ended(end) {}
  ~NotedItem() override { ended = true; }

 private:
  bool& ended;
};

TEST(VirtualOperations, EndWithTheDeletingDestructor) {
  VestraParentData context("context", "client", true);
  bool ended = false;
  VestraDataInterface* node = new NotedItem(&context, ended);
  slot<DeletingDestructor>(node, 4)(node);
  EXPECT_TRUE(ended);
}

template <typename Field>
const Field& fieldAt(const void* object, std::size_t offset) {
  return *reinterpret_cast<const Field*>(static_cast<const char*>(object) + offset);
}

TEST(Fields, OfAContextStandInTheirPlaces) {
  VestraParentData context("context", "client", true);
  auto* child = new VestraAddData("k", "v", &context);
  context.addChild(child);
  context.setVestraId("id");
  EXPECT_EQ(fieldAt<std::string>(&context, 8), "context");
  EXPECT_EQ(fieldAt<std::string>(&context, 40), "client");
  EXPECT_EQ(fieldAt<bool>(&context, 72), true);
  EXPECT_EQ(fieldAt<std::string>(&context, 80), "id");
  EXPECT_EQ(fieldAt<std::vector<VestraDataInterface*>>(&context, 112),
            std::vector<VestraDataInterface*>{child});
}

TEST(Fields, OfAnItemStandInTheirPlaces) {
  VestraParentData context("context", "client", true);
  VestraAddData item("key", "value", &context);
  EXPECT_EQ(fieldAt<std::string>(&item, 8), "key");
  EXPECT_EQ(fieldAt<std::string>(&item, 40), "value");
  EXPECT_EQ(fieldAt<VestraParentData*>(&item, 72), &context);
}

}  // namespace
}  // namespace Oza
