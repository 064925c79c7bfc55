#ifndef VESTRA_HANDLER_SUPPORT_LIBRARY_H
#define VESTRA_HANDLER_SUPPORT_LIBRARY_H

#include <string>

/// The support library, libqvzcommonvestrasupport.so, found by the loader's search
/// path. The addresses of its entry points are global to the process; the handle
/// belongs to the handler that opened it.
namespace Oza::support_library {

inline constexpr char FILE_NAME[] = "libqvzcommonvestrasupport.so";

// Its entry points. The misspelling of the last one is part of the interface.
inline constexpr char EXEC_PATH_ENTRY[] = "oza_vestra_exec_path";
inline constexpr char REGISTRATION_ENTRY[] = "oza_vestra_regid";
inline constexpr char ENVIRONMENT_ENTRY[] = "oza_vestra_enviroment_data";

/// Whether the library has been opened and not been closed since.
bool isOpen();

/// Opens the library and looks up its three entry points.
/// @return The handle for `close`; null when it cannot be opened.
void* open();

/// Closes the library, so that `isOpen` is false. `handle` is not null.
void close(void* handle);

// The results of the three entry points. The library must be open. Throw
// std::logic_error when it lacks the entry point or the result is null.

/// The command that starts the main design tool.
std::string execPath();

/// The registration identifier.
std::string registrationId();

/// The environment text.
/// @param productName  The simulator's name; null for the lab tool.
std::string environmentData(const char* productName);

}  // namespace Oza::support_library

#endif
