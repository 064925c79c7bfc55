// A host with a Boost of its own, which it uses before, between and after its calls.
// Prints a line for each thing that went as it should, and fails at the first that did
// not. With CATCHES_BY_TYPE, its Boost is the library's. With OPENS_THE_LIBRARY, it is not
// linked to the library; the last word says what dlopen does with its symbols.
//
//     host PROJECT_DIRECTORY [LIBRARY local|global]

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

#include <vestra/vestra.h>
#include <boost/filesystem.hpp>
#include <boost/version.hpp>

namespace files = boost::filesystem;
using Oza::Vestra;

namespace {

/// What a host calls, however it came to the library.
struct EntryPoints {
  decltype(&Vestra::add) add;
  decltype(&Vestra::send) send;
};

#ifdef OPENS_THE_LIBRARY
void* checked(void* found) {
  if (found == nullptr) {
    throw std::runtime_error(dlerror());
  }
  return found;
}

EntryPoints entryPoints(const char* const* arguments) {
  const int scope = arguments[1] == std::string("global") ? RTLD_GLOBAL : RTLD_LOCAL;
  void* const library = checked(dlopen(arguments[0], RTLD_NOW | scope));
  return {reinterpret_cast<decltype(EntryPoints::add)>(
              checked(dlsym(library, "_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE"))),
          reinterpret_cast<decltype(EntryPoints::send)>(
              checked(dlsym(library, "_ZN3Oza6Vestra4sendEPKcNS0_11ProductTypeE")))};
}
#else
EntryPoints entryPoints(const char* const*) { return {&Vestra::add, &Vestra::send}; }
#endif

void expect(bool holds, const std::string& what) {
  if (!holds) {
    throw std::runtime_error("host: not true: " + what);
  }
  std::cout << "host: " << what << '\n';
}

std::string namesIn(const files::path& directory) {
  std::string names;
  for (files::directory_iterator entry(directory), end; entry != end; ++entry) {
    names += entry->path().filename().string() + " ";
  }
  return names;
}

void useBoost(const files::path& project, const std::string& when) {
  files::create_directories(project / "own" / "results");
  expect(files::is_directory(files::status(project / "own")), "its own Boost works " + when);
  expect(namesIn(project / "own") == "results ", "its own Boost lists a directory " + when);
  try {
    files::file_size(project / "missing");
    expect(false, "its own Boost throws " + when);
  } catch (const files::filesystem_error& error) {
    expect(error.path1() == project / "missing", "its own Boost names the file " + when);
  }
}

void report(const EntryPoints& vestra, const std::string& project) {
  vestra.add("runs", "2", Vestra::KELVO_USAGE);
  expect(vestra.send(project.c_str(), Vestra::KELVO), "the report is sent");
  expect(!vestra.send(project.c_str(), Vestra::KELVO), "a second one is not due");
}

// A report is told by an exception where the current directory is gone.
void loseCurrentDirectory(const files::path& project) {
  files::create_directory(project / "gone");
  expect(chdir((project / "gone").c_str()) == 0, "it goes to a directory");
  expect(rmdir((project / "gone").c_str()) == 0, "the directory is removed");
}

void catchAsStandardException(const EntryPoints& vestra, const std::string& project) {
  try {
    vestra.send(project.c_str(), Vestra::KELVO);
    expect(false, "sending throws");
  } catch (const std::exception& error) {
    expect(std::string(error.what()).find("boost::filesystem::current_path") == 0,
           "it catches std::exception");
  }
}

#ifdef CATCHES_BY_TYPE
void catchByType(const EntryPoints& vestra, const std::string& project) {
  try {
    vestra.send(project.c_str(), Vestra::KELVO);
    expect(false, "sending throws");
  } catch (const files::filesystem_error& error) {
    expect(error.code() == boost::system::errc::no_such_file_or_directory && error.path1().empty(),
           "it catches filesystem_error");
  }
}
#else
void catchByType(const EntryPoints&, const std::string&) {}
#endif

void run(const EntryPoints& vestra, const std::string& project) {
  useBoost(project, "before");
  report(vestra, project);
  useBoost(project, "after a report");
  loseCurrentDirectory(project);
  catchAsStandardException(vestra, project);
  catchByType(vestra, project);
  useBoost(project, "at the end");
}

}  // namespace

int main(int, char** arguments) {
  try {
    std::cout << "host: has Boost " << BOOST_LIB_VERSION << '\n';
    run(entryPoints(arguments + 2), arguments[1]);
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
