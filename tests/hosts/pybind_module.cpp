// What pybind11 makes of the header for a script: exceptions are the script's own errors.
#include <pybind11/pybind11.h>

#include <vestra/vestra.h>

using Oza::Vestra;

PYBIND11_MODULE(vestra_module, module) {
  pybind11::enum_<Vestra::SectionType>(module, "SectionType").value("KELVO_USAGE", Vestra::KELVO_USAGE);
  pybind11::enum_<Vestra::ProductType>(module, "ProductType").value("KELVO", Vestra::KELVO);
  module.def("add", &Vestra::add);
  module.def("send", &Vestra::send);
  module.def("getLogFileName", &Vestra::getLogFileName);
}
