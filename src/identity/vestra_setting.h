#ifndef VESTRA_IDENTITY_VESTRA_SETTING_H
#define VESTRA_IDENTITY_VESTRA_SETTING_H

#include <map>
#include <string>

#include "files/descriptor.h"
#include "files/time_budget.h"

namespace Oza {

/// Reads settings lines, "key=value", into a table.
///
/// A line is trimmed as a whole by the global locale's white space and split at
/// "="; anything but exactly one "=" drops it without a word. The first line with
/// a key wins, over later lines and not over what the table already holds.
void readSettings(const std::string& text, std::map<std::string, std::string>& properties);

/// Path of a user's settings file.
///
/// @param home  Null or empty for one without a home: "/tmp" takes its place.
std::string settingsPath(const char* home);

/// The per-user settings: the lines of `$HOME`/.Calvix/Common/2018.2/vestra as
/// they stood when the object was made, and the random installation identifier
/// that lives among them.
class VestraSetting {
 public:
  /// Computes the file's path and reads the file.
  VestraSetting();

  /// Computes the path of the settings file from the environment variable HOME;
  /// where that is unset or empty, "/tmp" takes its place. Touches no file.
  void setOrbeloFile();

  /// Reads the settings file into the table. A file that is missing, unreadable
  /// or not a regular one adds nothing, and one is taken to end after its first MiB.
  void readFile();

  /// The value of a key, byte for byte; empty when there is none.
  std::string getPropertyValue(const std::string& key) const;

  /// Whether the text begins with "true", in lower case.
  bool stringToBool(const std::string& text);

  /// The version that the settings directory is named by: "2018.2", whatever the
  /// host's own.
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
