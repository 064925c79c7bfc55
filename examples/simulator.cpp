// A host as small as can be: a simulator that reports how it was used.
//
//     simulator PROJECT_DIRECTORY

#include <cstdlib>
#include <iostream>

#include <vestra/vestra.h>

using Oza::Vestra;

namespace {

void describeInstallation() {
  Vestra::add("product_version", "KELVO v2018.2 (64-bit)", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  Vestra::add("build_version", "2258646", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  Vestra::add("beta", "FALSE", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  Vestra::add("target_device", "x7k325t", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
}

void describeRun() {
  Vestra::add("mode", "batch", Vestra::KELVO_COMMAND_LINE_OPTIONS);
  Vestra::add("snapshot", "behavioral", Vestra::KELVO_COMMAND_LINE_OPTIONS);
  Vestra::add("simulated_time", "1500 ns", Vestra::KELVO_USAGE);
  Vestra::add("runs", "2", Vestra::KELVO_USAGE);
  Vestra::add("language", "mixed", Vestra::KELVO_USAGE);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: simulator PROJECT_DIRECTORY\n";
    return EXIT_FAILURE;
  }
  describeInstallation();
  describeRun();
  const bool sent = Vestra::send(argv[1], Vestra::KELVO);
  std::cout << (sent ? "simulator: the report was sent\n" : "simulator: no report was due\n");
  return EXIT_SUCCESS;
}
