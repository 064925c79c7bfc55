#ifndef VESTRA_TESTS_RELIABILITY_WORKPLACE_H
#define VESTRA_TESTS_RELIABILITY_WORKPLACE_H

#include <iosfwd>
#include <optional>
#include <string>

#include <vestra/vestra.h>

#include "reliability/traced_host.h"
#include "support/temporary_directory.h"

namespace vestra_test {

/// What a host finds, and for which product it reports.
struct Situation {
  enum Project { NEW_PROJECT, KNOWN_PROJECT };
  enum Home {
    NEW_HOME,
    /// The settings file has other lines only.
    HOME_WITHOUT_IDENTIFIER,
    /// It has an identifier between other lines.
    KNOWN_HOME
  };
  Oza::Vestra::ProductType product;
  Project project;
  Home home;
};

std::ostream& operator<<(std::ostream& out, const Situation& situation);

/// The known project's identifier.
inline constexpr const char* KNOWN_PROJECT_ID = "7c1d0a52-6a0e-4b7e-8a55-0f4f6f0f9b0d";

/// A home and a project that one host after the other works on.
class Workplace {
 public:
  explicit Workplace(const Situation& found);

  /// How a host is started here.
  HostStart start() const;
  /// Puts everything back to how the situation says it was in the beginning.
  void reset();
  /// Writes the files that the situation begins with.
  void furnish();
  /// Makes the next report due, where the identity file is one that says otherwise.
  void makeDue();

  std::string home() const { return directory / "home"; }
  std::string project() const { return directory / "project"; }
  std::string settingsFile() const { return home() + "/.Calvix/Common/2018.2/vestra"; }
  std::string identityFile() const { return inVestraDirectory(".kelvo_vestrra.info"); }
  std::string scriptFile() const;
  std::string rulesFile() const;
  std::string inVestraDirectory(const std::string& name) const { return project() + "/vestra/" + name; }

  /// What the situation's settings file held in the beginning; empty without one.
  std::string settingsBefore() const;
  /// What its identity file held.
  std::optional<std::string> identityBefore() const;
  /// When the known project's last report was sent.
  static std::string oldTime() { return "1542786245"; }

  /// Names and contents of all files, with times and random identifiers made equal:
  /// all that a later host can tell one past from another by.
  std::string state() const;

 private:
  Situation situation;
  TemporaryDirectory directory;
};

/// The bytes of a file; nothing for a missing one.
std::optional<std::string> contentOf(const std::string& path);

}  // namespace vestra_test

#endif
