#include "handler/report_script.h"

#include "data/item_renderer.h"
#include "handler/product_profile.h"

namespace Oza {
namespace {

bool isFirstOfItsClient(std::size_t context) { return context % 2 == 0; }

std::array<bool, CONTEXT_COUNT> emptyOnes(const std::vector<VestraDataInterface*>& contexts) {
  std::array<bool, CONTEXT_COUNT> isEmpty{};
  for (std::size_t i = 0; i < CONTEXT_COUNT; ++i) {
    isEmpty[i] = NodeAccess::children(static_cast<VestraParentData&>(*contexts[i])).empty();
  }
  return isEmpty;
}

void appendRegistration(VestraDataInterface& context, CollectedText& text) {
  text.lines += "vestra_register_client -client " + context.getClient() + "\n";
  text.checksum.append(context.getClient());
}

// Reserves memory once, since growing would copy a large text. The last lines are mostly
// paths, each of at most PATH_MAX (4096) bytes.
void makeRoom(const std::vector<VestraDataInterface*>& contexts, std::string& lines) {
  std::size_t size = std::size_t{4} * 4096;
  for (VestraDataInterface* context : contexts) {
    size += sizeOfPlainLines(static_cast<VestraParentData&>(*context));
  }
  lines.reserve(lines.size() + size);
}

void appendContext(VestraDataInterface& context, CollectedText& text) {
  if (!appendIfPlain(static_cast<VestraParentData&>(context), text.lines, text.checksum)) {
    text.lines += context.toTclString();
    text.checksum.append(context.toCRCSegment());
  }
}

}  // namespace

std::string initLine(const std::string& vestraDirectory) {
  return "vestra_init -vestra_dir " + vestraDirectory + "\n";
}

std::array<bool, CONTEXT_COUNT> visitedContexts(const std::array<bool, CONTEXT_COUNT>& isEmpty) {
  std::array<bool, CONTEXT_COUNT> visited{};
  for (std::size_t i = 0; i < CONTEXT_COUNT; ++i) {
    if (i + 1 < CONTEXT_COUNT && isEmpty[i] && isEmpty[i + 1]) {
      ++i;
    } else {
      visited[i] = true;
    }
  }
  return visited;
}

void appendContexts(const std::vector<VestraDataInterface*>& contexts, CollectedText& text) {
  const std::array<bool, CONTEXT_COUNT> visited = visitedContexts(emptyOnes(contexts));
  makeRoom(contexts, text.lines);
  for (std::size_t i = 0; i < CONTEXT_COUNT; ++i) {
    if (!visited[i]) {
      continue;
    }
    if (isFirstOfItsClient(i)) {
      appendRegistration(*contexts[i], text);
    }
    appendContext(*contexts[i], text);
  }
}

std::string registrationText(bool isInternal, Vestra::ProductType product,
                             const std::string& registrationId) {
  return isInternal ? std::string("VESTRA_TEST_") + profileOf(product).name + "_" + registrationId
                    : registrationId;
}

std::string transmitLines(std::uint32_t clientId, const std::string& registration,
                          const std::string& vestraDirectory, Vestra::ProductType product) {
  const ProductProfile& profile = profileOf(product);
  return "vestra_transmit -clientid " + std::to_string(clientId) + " -regid \"" + registration + "\" -xml " +
         vestraDirectory + profile.xml + " -html " + vestraDirectory + profile.html + " -wdm " +
         vestraDirectory + profile.rules + " -intro \"<H3>" + profile.name +
         " Usage Report</H3><BR>\"\nvestra_terminate\n";
}

}  // namespace Oza
