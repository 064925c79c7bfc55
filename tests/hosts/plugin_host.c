/* A host that knows of no usage reports. A plugin of it reports, with the shim: it is
 * opened, closed and opened again.
 *
 *     plugin_host PROJECT_DIRECTORY PLUGIN LIBRARY
 */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

static void* opened(const char* file) {
  void* found = dlopen(file, RTLD_NOW | RTLD_LOCAL);
  if (!found) {
    puts(dlerror());
  }
  return found;
}

static int loaded(const char* library) {
  void* found = dlopen(library, RTLD_NOW | RTLD_NOLOAD);
  if (found) {
    dlclose(found);
  }
  return found != NULL;
}

/* C knows no cast from an address of data to one of code. */
static int sent(void* plugin, const char* project) {
  int (*send)(const char*, unsigned);
  void* found = dlsym(plugin, "vestra_send");
  memcpy(&send, &found, sizeof send);
  return send(project, 0);
}

static int differs(const char* what, int answer, int expected) {
  printf("host: %s: %d\n", what, answer);
  return answer != expected;
}

/* A day has one report: the second one of the project is not due. */
static int use(const char* const* arguments, int expected) {
  void* plugin = opened(arguments[2]);
  if (!plugin) {
    return 1;
  }
  int failures = differs("the library is loaded", loaded(arguments[3]), 1);
  failures += differs("the report is sent", sent(plugin, arguments[1]), expected);
  dlclose(plugin);
  return failures + differs("the library stays loaded", loaded(arguments[3]), 0);
}

int main(int argc, char** argv) {
  if (argc != 4) {
    return 2;
  }
  const char* const* arguments = (const char* const*)argv;
  int failures = use(arguments, 1);
  return failures + use(arguments, 0);
}
