#ifndef VESTRA_HANDLER_RULES_FILE_H
#define VESTRA_HANDLER_RULES_FILE_H

#include <string>

#include <vestra/vestra.h>

namespace Oza {

/// The text of a product's rules file: the contexts of client "project" and of the
/// product's client, whatever has been collected.
std::string rulesFileText(Vestra::ProductType product);

}  // namespace Oza

#endif
