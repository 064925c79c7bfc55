// A minimal host: a simulator that reports how it was used.
//
//     simulator PROJECT_DIRECTORY

#include <cstdlib>
#include <exception>
#include <iostream>

#include <vestra/vestra.h>

using Oza::Vestra;

namespace {

void describeInstallation() {
  Vestra::add("product_version", "KELVO v2018.2 (64-bit)", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  Vestra::add("build_version", "1000", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  Vestra::add("beta", "FALSE", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  Vestra::add("target_device", "orb-200", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
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
  // A support library that is not whole makes Vestra throw: the report is lost, the user's work is not.
  try {
    describeInstallation();
    describeRun();
    const bool handedOver = Vestra::send(argv[1], Vestra::KELVO);
    std::cout << (handedOver ? "simulator: the report was handed over\n" : "simulator: no report today\n");
  } catch (const std::exception& error) {
    std::cerr << "simulator: no report: " << error.what() << '\n';
  }
  return EXIT_SUCCESS;
}
