#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include <vestra/vestra_data.h>

#include "numbered_text.h"
#include "paired.h"
#include "rows.h"

namespace vestra_bench {
namespace {

constexpr double GOAL = 2;
constexpr std::size_t COUNTS[] = {100, 10000, 1000000};

struct KeyAndValue {
  std::string key;
  std::string value;
};

/// The pieces that stand around each item's key and value.
struct Frame {
  std::string beforeKey;
  std::string betweenKeyAndValue;
  std::string afterValue;
};

const Frame SCRIPT{"vestra_add_data -client kelvo -key ", " -value \"", "\" -context \"kelvo\\\\usage\"\n"};
const Frame CHECKSUM{"", "", "kelvokelvo\\usage"};

/// A context of the library and the same items as plain texts.
struct Items {
  explicit Items(std::size_t count) : context("kelvo\\\\usage", "kelvo", false) {
    NumberedText key('k', 16);
    NumberedText value('v', 24);
    texts.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      texts.push_back({key.next(), value.next()});
      context.addChild(new Oza::VestraAddData(texts.back().key, texts.back().value, &context));
    }
  }

  Oza::VestraParentData context;
  std::vector<KeyAndValue> texts;
};

std::string appendAll(const std::vector<KeyAndValue>& items, const Frame& frame, std::size_t size) {
  std::string text;
  text.reserve(size);
  for (const KeyAndValue& item : items) {
    text.append(frame.beforeKey).append(item.key).append(frame.betweenKeyAndValue);
    text.append(item.value).append(frame.afterValue);
  }
  return text;
}

template <typename Render>
Spread compare(const Items& items, const Frame& frame, Render render) {
  const std::size_t size = render().size();
  return compareInTurn([&] { benchmark::DoNotOptimize(render()); },
                       [&] { benchmark::DoNotOptimize(appendAll(items.texts, frame, size)); });
}

}  // namespace

void measureRendering(const Take& take) {
  for (const std::size_t count : COUNTS) {
    Items items(count);
    const std::string many = std::to_string(count) + " items";
    take({"rendering script text, " + many, "appending it to a string with room", GOAL,
          compare(items, SCRIPT, [&] { return items.context.toTclString(); })});
    take({"rendering checksum text, " + many, "appending it to a string with room", GOAL,
          compare(items, CHECKSUM, [&] { return items.context.toCRCSegment(); })});
  }
}

}  // namespace vestra_bench
