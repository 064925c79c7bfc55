#include <vestra/vestra.h>

namespace Oza {

const char* NEW_LINE = "\n";
const char* SPACE = " ";
const char* PARAM_CONTEXT = "-context";
const char* PARAM_VALUE = "-value";
const char* PARAM_KEY = "-key";
const char* PARAM_CLIENT = "-client";
const char* TYPE_ADD_DATA = "vestra_add_data";

}  // namespace Oza
