// A minimal host whose system calls are traced:
//
//     reliability_host OUTCOME_FILE PROJECT_DIRECTORY PRODUCT
//
// HOST_PROJECT_ID in its environment is the project identifier that it supplies.
//
// It stops itself where its use of the library begins and where it ends. How that
// went stands in the outcome file afterwards: "answer true", "answer false" or
// "exception " and the type's name, and then by how many its open descriptors have
// grown.

#include <cxxabi.h>
#include <dirent.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include <vestra/vestra.h>

using Oza::Vestra;

namespace {

// A call that never comes back is ended by the alarm signal.
constexpr unsigned int SECONDS_TO_LIVE = 300;

void stop() { syscall(SYS_kill, getpid(), SIGSTOP); }

int openDescriptors() {
  int count = 0;
  DIR* directory = opendir("/proc/self/fd");
  while (readdir(directory) != nullptr) {
    ++count;
  }
  closedir(directory);
  return count;
}

std::string readable(const char* typeName) {
  int status = 0;
  char* name = abi::__cxa_demangle(typeName, nullptr, nullptr, &status);
  const std::string text = status == 0 ? name : typeName;
  std::free(name);
  return text;
}

void use(const char* project, Vestra::ProductType product, std::string& outcome) {
  try {
    Vestra::add("product_version", "2018.2", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
    if (const char* identifier = std::getenv("HOST_PROJECT_ID")) {
      Vestra::add("project_id", identifier, Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
    }
    Vestra::add("runs", "2", product == Vestra::TAVLO ? Vestra::TAVLO_USAGE : Vestra::KELVO_USAGE);
    outcome = Vestra::send(project, product) ? "answer true" : "answer false";
  } catch (...) {
    outcome = "exception " + readable(abi::__cxa_current_exception_type()->name());
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    return EXIT_FAILURE;
  }
  std::string outcome;
  const int before = openDescriptors();
  alarm(SECONDS_TO_LIVE);
  stop();
  use(argv[2], static_cast<Vestra::ProductType>(std::atoi(argv[3])), outcome);
  stop();
  const int grown = openDescriptors() - before;
  std::ofstream(argv[1]) << outcome << '\n' << grown << '\n';
  return EXIT_SUCCESS;
}
