#include "intercept/environment.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "intercept/intercept.h"

namespace vestra::intercept {
namespace {

using std::string_view;

constexpr std::size_t CARRIED_AT_MOST = 32;
constexpr string_view PRELOAD = "LD_PRELOAD=";

const char* carriedPrefix = "";
// Copies: hosts overwrite the memory of their first environment.
char* carriedEntries[CARRIED_AT_MOST];
std::size_t carriedCount = 0;

bool beginsWith(string_view text, string_view beginning) {
  return text.size() >= beginning.size() && std::memcmp(text.data(), beginning.data(), beginning.size()) == 0;
}

/// "NAME=" of an entry.
string_view nameOf(const char* entry) {
  const char* equals = std::strchr(entry, '=');
  return {entry, equals != nullptr ? static_cast<std::size_t>(equals - entry) + 1 : std::strlen(entry)};
}

const char* entryIn(char* const* environment, string_view name) {
  for (; environment != nullptr && *environment != nullptr; ++environment) {
    if (beginsWith(*environment, name)) {
      return *environment;
    }
  }
  return nullptr;
}

std::size_t lengthOf(char* const* environment) {
  std::size_t length = 0;
  while (environment != nullptr && environment[length] != nullptr) {
    ++length;
  }
  return length;
}

bool isPreloaded(char* const* environment, const char* objects) {
  const char* entry = entryIn(environment, PRELOAD);
  return entry != nullptr && std::strstr(entry, objects) != nullptr;
}

char* append(char* to, string_view text) {
  std::memcpy(to, text.data(), text.size());
  return to + text.size();
}

/// LD_PRELOAD with the objects in front of those that it names.
void writePreload(char* to, const char* objects, const char* old) {
  to = append(append(to, PRELOAD), objects);
  if (old != nullptr && old[PRELOAD.size()] != '\0') {
    to = append(append(to, ":"), old + PRELOAD.size());
  }
  *to = '\0';
}

}  // namespace

void carryEnvironment(const char* prefix) {
  findNextFunctions();
  carriedPrefix = prefix;
  carriedCount = 0;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    if (beginsWith(*entry, prefix) && carriedCount < CARRIED_AT_MOST) {
      carriedEntries[carriedCount++] = strdup(*entry);
    }
  }
}

const char* carried(string_view name) {
  const std::size_t prefix = std::strlen(carriedPrefix);
  for (std::size_t i = 0; i < carriedCount; ++i) {
    const char* rest = carriedEntries[i] + prefix;
    if (beginsWith(rest, name) && rest[name.size()] == '=') {
      return rest + name.size() + 1;
    }
  }
  return nullptr;
}

const char* variable(const char* name) {
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    const char* left = *entry;
    const char* right = name;
    while (*right != '\0' && *left == *right) {
      ++left;
      ++right;
    }
    if (*right == '\0' && *left == '=') {
      return left + 1;
    }
  }
  return nullptr;
}

bool isCleared(char* const* environment) {
  for (std::size_t i = 0; i < carriedCount; ++i) {
    if (entryIn(environment, nameOf(carriedEntries[i])) == nullptr) {
      return true;
    }
  }
  return false;
}

bool isIncomplete(char* const* environment) {
  const char* objects = carried("PRELOAD");
  return isCleared(environment) || (objects != nullptr && !isPreloaded(environment, objects));
}

std::size_t sizeOfCompleted(char* const* environment) {
  const char* objects = carried("PRELOAD");
  const char* old = entryIn(environment, PRELOAD);
  return (lengthOf(environment) + carriedCount + 2) * sizeof(char*) + PRELOAD.size() +
         (objects != nullptr ? std::strlen(objects) : 0) + (old != nullptr ? std::strlen(old) : 0) + 2;
}

char** complete(char* const* environment, void* memory) {
  const std::size_t length = lengthOf(environment);
  auto** entries = static_cast<char**>(memory);
  char* preload = reinterpret_cast<char*>(entries + length + carriedCount + 2);
  const char* objects = carried("PRELOAD");
  const bool isPreloadChanged = objects != nullptr && !isPreloaded(environment, objects);
  char** end = entries;
  if (isPreloadChanged) {
    writePreload(preload, objects, entryIn(environment, PRELOAD));
    *end++ = preload;
  }
  for (std::size_t i = 0; i < length; ++i) {
    if (!isPreloadChanged || !beginsWith(environment[i], PRELOAD)) {
      *end++ = environment[i];
    }
  }
  for (std::size_t i = 0; i < carriedCount; ++i) {
    if (entryIn(environment, nameOf(carriedEntries[i])) == nullptr) {
      *end++ = carriedEntries[i];
    }
  }
  *end = nullptr;
  return entries;
}

}  // namespace vestra::intercept
