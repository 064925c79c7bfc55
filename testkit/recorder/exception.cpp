#include "recorder/exception.h"

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <utility>

namespace vestra::testkit {
namespace {

void addBases(const std::type_info& type, std::vector<std::string>& names);

void addBase(const std::type_info& base, std::vector<std::string>& names) {
  names.push_back(nameOf(base));
  addBases(base, names);
}

/// Public bases, since only these are caught.
void addBases(const std::type_info& type, std::vector<std::string>& names) {
  if (const auto* single = dynamic_cast<const abi::__si_class_type_info*>(&type)) {
    addBase(*single->__base_type, names);
  } else if (const auto* several = dynamic_cast<const abi::__vmi_class_type_info*>(&type)) {
    for (unsigned int i = 0; i < several->__base_count; ++i) {
      if (several->__base_info[i].__is_public_p()) {
        addBase(*several->__base_info[i].__base_type, names);
      }
    }
  }
}

std::string textOfCaught() {
  try {
    throw;
  } catch (const std::exception& exception) {
    return exception.what();
  } catch (...) {
    return {};
  }
}

}  // namespace

std::string nameOf(const std::type_info& type) {
  int status = 0;
  char* name = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
  const std::string readable = status == 0 ? name : type.name();
  std::free(name);
  return readable;
}

Exception caughtException() {
  const std::type_info* const type = abi::__cxa_current_exception_type();
  if (type == nullptr) {
    return {"an exception of another language", {}, {}};
  }
  Exception exception{nameOf(*type), textOfCaught(), {}};
  addBases(*type, exception.bases);
  return exception;
}

std::vector<std::string_view> fieldsOf(const Exception& exception) {
  std::vector<std::string_view> fields{exception.type, exception.text};
  fields.insert(fields.end(), exception.bases.begin(), exception.bases.end());
  return fields;
}

Exception exceptionFrom(std::vector<std::string> fields) {
  Exception exception{std::move(fields.at(0)), std::move(fields.at(1)), {}};
  exception.bases.assign(fields.begin() + 2, fields.end());
  return exception;
}

}  // namespace vestra::testkit
