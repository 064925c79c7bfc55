#ifndef VESTRA_HANDLER_SUPPORT_LIBRARY_H
#define VESTRA_HANDLER_SUPPORT_LIBRARY_H

#include <string>

/// The support library, libqvzcommonvestrasupport.so, found by the loader's search
/// path. Its entry points are held once for the process, for all handlers; the
/// handle belongs to the handler that opened it.
namespace Oza::support_library {

inline constexpr char FILE_NAME[] = "libqvzcommonvestrasupport.so";

// Its entry points. The spelling of the last one is a part of the interface.
inline constexpr char EXEC_PATH_ENTRY[] = "oza_vestra_exec_path";
inline constexpr char REGISTRATION_ENTRY[] = "oza_vestra_regid";
inline constexpr char ENVIRONMENT_ENTRY[] = "oza_vestra_enviroment_data";

/// Whether the library has been opened and not been closed since.
bool isOpen();

/// Opens the library and looks its three entry points up.
/// @return The handle, to be given to `close`; null when it cannot be opened.
void* open();

/// Closes the library, so that `isOpen` is false. `handle` is not null.
void close(void* handle);

// The three questions. The library must be open. An entry point that it lacks, or
// a null answer, throws std::logic_error.

/// The command that starts the main design tool.
std::string execPath();

/// The registration identifier.
std::string registrationId();

/// The environment text, for the simulator with its product name, for the lab tool
/// with null.
std::string environmentData(const char* productName);

}  // namespace Oza::support_library

#endif
