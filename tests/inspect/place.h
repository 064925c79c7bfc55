#ifndef VESTRA_TESTS_INSPECT_PLACE_H
#define VESTRA_TESTS_INSPECT_PLACE_H

#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/process.h"
#include "support/temporary_directory.h"

namespace vestra_test {

using Json = nlohmann::ordered_json;
using Words = std::vector<std::string>;

/// A moment that tests take for now, in seconds since the epoch.
inline constexpr std::int64_t NOW = 1795290000;
/// The support library's file.
inline constexpr const char* LIBRARY_NAME = "libqvzcommonvestrasupport.so";

/// A home and a project of an ordinary user, and copies of the programs where that user may
/// run them: root's tests run them as user 65534, whom permission bits stop.
class Place {
 public:
  Place();

  std::string home() const { return directory / "home"; }
  std::string project() const { return projectDirectory.empty() ? directory / "project" : projectDirectory; }
  /// For other homes and projects, and what else a test wants to be left alone.
  std::string elsewhere() const { return directory / "elsewhere"; }
  std::string settings() const { return home() + "/.Calvix/Common/2018.2/vestra"; }
  std::string identity() const { return inVestra(".kelvo_vestrra.info"); }
  std::string inVestra(const std::string& name) const { return project() + "/vestra/" + name; }
  std::string operator/(const std::string& name) const { return directory / name; }
  /// Where the programs and libraries lie; the support library, which loaders find, in its own.
  std::string programs() const { return directory / "programs"; }
  std::string support() const { return directory / "support"; }

  /// Writes a file with its directories.
  void write(const std::string& path, const std::string& text) const;
  /// An identity file whose last reports went at these times.
  void writeIdentity(std::int64_t last, std::int64_t lastAlt = 0, const std::string& iteration = "5") const;
  /// Another project than the ordinary one, which stays the working directory; created unless it is
  /// to be missing.
  void moveProject(const std::string& path);
  void setVariable(const std::string& name, const std::string& value);

  /// Runs the inspector in the project.
  Outcome inspect(const Words& words) const;
  Json document(Words words) const;
  /// Runs a host that adds items to the product's usage, key after value; it prints what `send`
  /// answered.
  Outcome runHost(const std::string& product = "KELVO", const Words& items = {"runs", "2"}) const;
  Outcome runProgram(const Words& words) const;
  /// The same as a command line of an ordinary user.
  Command asUser(const Words& words) const;
  std::vector<std::string> environment() const { return variables; }

  /// Makes everything the ordinary user's.
  void giveToUser() const;

  /// Each file with all that stat tells of it; the time of the last access only of
  /// files, since listing a directory and following a link change theirs.
  std::string snapshot() const;
  std::string inspector() const { return programs() + "/bin/vestra-inspect"; }
  std::string host() const { return programs() + "/bin/items_host"; }

 private:
  TemporaryDirectory directory;
  std::vector<std::string> variables;
  std::string projectDirectory;
};

/// The identifiers of the findings in a document.
std::vector<std::string> findingsOf(const Json& document);

/// Expects that documents fit the schema.
void expectValid(const std::vector<std::string>& documents);

/// What a document says of the next run for KELVO, KELVO_ALT or TAVLO.
Json predictionOf(const Json& document, const std::string& product = "KELVO");

/// The value of an item in a script; "(none)" without the item.
std::string valueIn(const std::string& script, const std::string& key);

}  // namespace vestra_test

#endif
