// A host that is compiled without type information (-fno-rtti) and has nodes of its own.

#include <cstdio>
#include <cstdlib>
#include <string>

#include <vestra/vestra_data.h>

namespace {

class Remark : public Oza::VestraDataInterface {
 public:
  std::string toTclString() override { return "# a remark\n"; }
  std::string toCRCSegment() override { return "remark"; }
  std::string getClient() override { return {}; }
};

class Measurement : public Oza::VestraAddData {
 public:
  using Oza::VestraAddData::VestraAddData;
  std::string toTclString() override { return "# measured\n" + Oza::VestraAddData::toTclString(); }
};

class Laboratory : public Oza::VestraParentData {
 public:
  using Oza::VestraParentData::VestraParentData;
  std::string getClient() override { return "laboratory"; }
};

void expect(const std::string& text, const std::string& expected) {
  if (text != expected) {
    std::printf("%s\ninstead of\n%s\n", text.c_str(), expected.c_str());
    std::exit(EXIT_FAILURE);
  }
}

}  // namespace

int main() {
  Oza::VestraParentData context("c", "p", true);
  context.addChild(new Remark);
  context.addChild(new Oza::VestraAddData("k", "1", &context));
  context.addChild(new Measurement("m", "2", &context));
  auto* inner = new Laboratory("l", "p", true);
  inner->addChild(new Oza::VestraAddData("n", "3", inner));
  context.addChild(inner);
  expect(context.toTclString(),
         "# a remark\n"
         "vestra_add_data -client p -key k -value \"1\" -context \"c\"\n"
         "# measured\n"
         "vestra_add_data -client p -key m -value \"2\" -context \"c\"\n"
         "vestra_add_data -client laboratory -key n -value \"3\" -context \"l\"\n");
  expect(context.toCRCSegment(), "remarkk1pcm2pcn3laboratoryl");
  return EXIT_SUCCESS;
}
