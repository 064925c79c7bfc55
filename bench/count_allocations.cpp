// Writes how many allocations one item takes: the middle of what each of many took, since
// now and then the list of items grows as well.
//
//     count_allocations KEY_LENGTH VALUE_LENGTH

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <vestra/vestra.h>

#include "interface/failing_allocations.h"
#include "numbered_text.h"

namespace {

constexpr std::size_t ITEMS = 10000;

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    return EXIT_FAILURE;
  }
  vestra_bench::NumberedText key('k', std::strtoul(argv[1], nullptr, 10));
  vestra_bench::NumberedText value('v', std::strtoul(argv[2], nullptr, 10));
  std::vector<long> ofEach(ITEMS);
  for (long& count : ofEach) {
    const long before = vestra_test::allocationsSoFar();
    Oza::Vestra::add(key.next(), value.next(), Oza::Vestra::KELVO_USAGE);
    count = vestra_test::allocationsSoFar() - before;
  }
  std::nth_element(ofEach.begin(), ofEach.begin() + ITEMS / 2, ofEach.end());
  std::printf("%ld\n", ofEach[ITEMS / 2]);
  return EXIT_SUCCESS;
}
