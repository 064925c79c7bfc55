#include "usage_report.h"

#include <vestra/vestra.h>

using Oza::Vestra;

void reportUsage(const Simulation& simulation) {
  Vestra::add("target_device", simulation.device.c_str(), Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  Vestra::add("mode", simulation.mode.c_str(), Vestra::KELVO_COMMAND_LINE_OPTIONS);
  Vestra::add("runs", std::to_string(simulation.runs).c_str(), Vestra::KELVO_USAGE);
}
