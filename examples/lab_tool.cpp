// A minimal host: a lab tool that reports how it was used.
//
//     lab_tool PROJECT_DIRECTORY

#include <cstdlib>
#include <exception>
#include <iostream>

#include <vestra/vestra.h>

using Oza::Vestra;

namespace {

void describeInstallation() {
  Vestra::add("product_version", "TAVLO v2018.2 (64-bit)", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  Vestra::add("build_version", "1000", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  Vestra::add("target_device", "orb-200", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
}

void describeRun() {
  Vestra::add("batch", "no", Vestra::TAVLO_COMMAND_LINE_OPTIONS);
  Vestra::add("cable", "usb", Vestra::TAVLO_COMMAND_LINE_OPTIONS);
  Vestra::add("probes", "4", Vestra::TAVLO_USAGE);
  Vestra::add("captured_samples", "4096", Vestra::TAVLO_USAGE);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: lab_tool PROJECT_DIRECTORY\n";
    return EXIT_FAILURE;
  }
  // A support library that is not whole makes Vestra throw: the report is lost, the user's work is not.
  try {
    describeInstallation();
    describeRun();
    const bool handedOver = Vestra::send(argv[1], Vestra::TAVLO);
    std::cout << (handedOver
                      ? "lab tool: the report was handed over; its log is " + Vestra::getLogFileName() + "\n"
                      : "lab tool: no report today\n");
  } catch (const std::exception& error) {
    std::cerr << "lab tool: no report: " << error.what() << '\n';
  }
  return EXIT_SUCCESS;
}
