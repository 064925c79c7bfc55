#ifndef VESTRA_IDENTITY_VESTRA_SETTING_H
#define VESTRA_IDENTITY_VESTRA_SETTING_H

#include <map>
#include <string>

#include "files/descriptor.h"
#include "files/time_budget.h"

namespace Oza {

/// Reads settings lines, "key=value", into a table.
///
/// A line is trimmed of the global locale's white space and split at "="; a line without
/// exactly one "=" is silently ignored. The first value of a key is kept; what the table
/// holds already comes before all lines.
void readSettings(const std::string& text, std::map<std::string, std::string>& properties);

/// Path of a user's settings file.
///
/// @param home  The user's home. If it is null or empty, "/tmp" is used.
std::string settingsPath(const char* home);

/// The per-user settings: the lines of `$HOME`/.Calvix/Common/2018.2/vestra, read when the
/// object is created, and the random installation identifier, which is one of them.
/// The concurrency design: docs/architecture.md, "Many hosts in one project".
class VestraSetting {
 public:
  /// Computes the file's path and reads the file.
  VestraSetting();

  /// Computes the path of the settings file from the environment variable HOME or, if
  /// that is unset or empty, from "/tmp". Accesses no file.
  void setOrbeloFile();

  /// Reads the settings file into the table. A file that is missing, unreadable
  /// or not a regular one adds nothing. Only the first MiB is read.
  void readFile();

  /// The value of a key, byte for byte; empty when there is none.
  std::string getPropertyValue(const std::string& key) const;

  /// Whether the text begins with "true", in lower case.
  bool stringToBool(const std::string& text);

  /// The version in the settings directory's name: "2018.2", whatever the host's own.
  std::string getCalvixVersion() const;

  /// The random installation identifier: the value of "RandomID" or, where that is
  /// missing or empty, a new UUID, appended to the settings file (created with its
  /// directories if missing) and kept in the table. Before it is appended, the file is
  /// locked and read again: what another process has appended meanwhile is used instead.
  ///
  /// @return Empty, with nothing written, when the file's directory cannot be created
  ///         or the file cannot be opened. A failed write is not reported.
  std::string getRandomId();

 private:
  bool makeSettingsDirectory() const;
  std::string findOrAppendRandomId(const Descriptor& file);

  std::string settingsFile;
  std::map<std::string, std::string> properties;
  TimeBudget timeBudget;
};

}  // namespace Oza

#endif
