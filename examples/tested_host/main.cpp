#include <exception>
#include <iostream>

#include <vestra/vestra.h>

#include "usage_report.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: host PROJECT_DIRECTORY\n";
    return 1;
  }
  try {
    reportUsage({"orb-200", "batch", 2});
    std::cout << (Oza::Vestra::send(argv[1], Oza::Vestra::KELVO) ? "sent\n" : "not sent\n");
  } catch (const std::exception& error) {
    std::cerr << "no report: " << error.what() << '\n';
  }
}
