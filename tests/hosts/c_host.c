/* A host in C, which calls the shim: 0 when all of its answers are as they should be.
 *
 *     c_host PROJECT_DIRECTORY
 */
#include <stdio.h>

int vestra_add(const char* key, const char* value, unsigned section);
int vestra_send(const char* projectDir, unsigned product);

static int differs(const char* what, int answer, int expected) {
  printf("host: %s: %d\n", what, answer);
  return answer != expected;
}

int main(int argc, char** argv) {
  const char* project = argc == 2 ? argv[1] : ".";
  return differs("an item is added", vestra_add("runs", "2", 3), 1) +
         differs("without a value, there is an exception", vestra_add("runs", NULL, 3), -1) +
         differs("the report is sent", vestra_send(project, 0), 1) +
         differs("a second one is not due", vestra_send(project, 0), 0);
}
