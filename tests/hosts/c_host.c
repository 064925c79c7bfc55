/* A host in C, which calls the shim: 0 when all of its answers are as they should be.
 *
 *     c_host PROJECT_DIRECTORY
 */
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

int vestra_add(const char* key, const char* value, unsigned section);
int vestra_send(const char* projectDir, unsigned product);

static int differs(const char* what, int answer, int expected) {
  printf("host: %s: %d\n", what, answer);
  return answer != expected;
}

static int lose_current_directory(const char* project) {
  return chdir(project) || mkdir("gone", 0777) || chdir("gone") || rmdir("../gone");
}

int main(int argc, char** argv) {
  const char* project = argc == 2 ? argv[1] : ".";
  int failures = differs("an item is added", vestra_add("runs", "2", 3), 1);
  failures += differs("without a value, there is an exception", vestra_add("runs", NULL, 3), -1);
  failures += differs("the report is sent", vestra_send(project, 0), 1);
  failures += differs("a second one is not due", vestra_send(project, 0), 0);
  failures += differs("its current directory is gone", lose_current_directory(project), 0);
  failures += differs("there is an exception", vestra_send(project, 0), -1);
  return failures;
}
