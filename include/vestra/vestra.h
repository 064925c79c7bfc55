#ifndef VESTRA_VESTRA_H
#define VESTRA_VESTRA_H

#include <cstdint>
#include <string>

/// Marks the shared library's interface. A tool that parses the headers without knowing
/// attributes may define it as nothing.
#ifndef VESTRA_EXPORT
#define VESTRA_EXPORT __attribute__((visibility("default")))
#endif

namespace Oza {

/// Usage statistics of one host process.
///
/// While it runs, the host records data items with `add`. At its end it asks for
/// the report with `send`. The process has one set of items, which is never
/// emptied: an item added before one `send` is in the next report too.
///
/// All strings are byte strings, copied before the call returns and written
/// without quoting or escaping. Call from one thread at a time; only the first
/// call in a process is guarded against concurrent calls.
///
/// The library's objects are destroyed at process exit. Static objects that the host
/// constructed before its first call are destroyed after that. In their destructors `add`
/// does nothing, `send` and `internal` return false and `getLogFileName` returns "".
class Vestra {
 public:
  /// The part of the report that an item belongs to.
  enum SectionType : std::uint32_t {
    /// Facts of the project and the installation. The report has fifteen fixed
    /// keys here, compared case-insensitively; others are dropped.
    SOFTWARE_VERSION_AND_TARGET_DEVICE = 0,
    /// The machine and the user's environment.
    USER_ENVIRONMENT = 1,
    /// Command-line options that the simulator was started with.
    KELVO_COMMAND_LINE_OPTIONS = 2,
    /// What the simulator was used for.
    KELVO_USAGE = 3,
    /// Command-line options that the lab tool was started with.
    TAVLO_COMMAND_LINE_OPTIONS = 4,
    /// What the lab tool was used for.
    TAVLO_USAGE = 5
  };

  /// The reporting product. Every value other than the first two is the lab tool.
  enum ProductType : std::uint32_t {
    /// The simulator.
    KELVO = 0,
    /// The simulator, with a once-a-day limit of its own.
    KELVO_ALT = 1,
    /// The lab tool.
    TAVLO = 2
  };

  /// Records one item. The same key added twice gives two items.
  ///
  /// @param key      Not null. Should hold no white space: it reaches the main
  ///                 design tool's script as a bare word.
  /// @param value    Not null. Should hold no double quote, dollar sign, square
  ///                 bracket or backslash: the script interpreter reads those.
  /// @param section  One of the six sections; no other value may be passed.
  /// @throws std::logic_error "basic_string::_M_construct null not valid" when
  ///         the key or the value is null; nothing has been added then.
  /// @throws std::bad_alloc when memory runs out; nothing has been added then.
  VESTRA_EXPORT static void add(const char* key, const char* value, SectionType section);

  /// Writes the report of everything added so far into `projectDir`/vestra/. At
  /// most once in 86400 seconds for each project and product slot, runs the main
  /// design tool on it through the shell and waits until it exits.
  ///
  /// Hosts may send at the same time in one project. Each waits at most 250 ms in
  /// total for the others. The once-a-day limit has exceptions: another process holds
  /// the lock for longer, the project is on a network file system, where no lock is
  /// taken, or the project identity file cannot be written.
  ///
  /// Reads and writes the per-user settings file
  /// `$HOME`/.Calvix/Common/2018.2/vestra (below /tmp where HOME is unset or
  /// empty) and, in `projectDir`/vestra/, the project identity file, the rules
  /// file, the script and the lab tool's log. Opens the support library
  /// libqvzcommonvestrasupport.so by the loader's search path. Reads the
  /// environment variables HOME, CALVIX_VESTRA_DEBUG_EXT (non-empty: the script
  /// and the rules file are kept) and CALVIX_VESTRA_INTERNAL_TRANSMIT (see
  /// `internal`).
  ///
  /// @param projectDir  Not null. A relative directory is resolved against the
  ///                    current one. It reaches the shell unquoted, so it must
  ///                    not contain blanks or shell characters.
  /// @return Whether the report was due and the main design tool was started;
  ///         its exit status does not matter. False also when the report
  ///         could not be prepared: the project identity file is unusable, or
  ///         there is no support library.
  /// @throws std::logic_error "basic_string::_M_construct null not valid" when
  ///         the project directory is null or the support library returns null.
  /// @throws std::logic_error naming the entry point that the support library
  ///         lacks.
  /// @throws boost::filesystem::filesystem_error (a std::runtime_error) when the
  ///         current directory has been deleted or an old file cannot be removed.
  /// @throws std::bad_alloc when memory runs out.
  /// @throws boost::uuids::entropy_error (a std::runtime_error) when the system
  ///         gives no random bytes for a new installation identifier.
  VESTRA_EXPORT static bool send(const char* projectDir, ProductType product);

  /// Whether this machine is on the maker's own network. Reports from there are marked
  /// as tests. Determined once, from the machine's NIS domain name or, if it has
  /// none, from /etc/resolv.conf. If the environment variable
  /// CALVIX_VESTRA_INTERNAL_TRANSMIT is not empty at any call, an internal machine
  /// counts as external from then on.
  VESTRA_EXPORT static bool internal();

  /// The file that receives the main design tool's output in a run for the lab tool:
  /// the absolute project directory of the last `send` followed by
  /// "/vestra/tavlo_vestra.log", for every product.
  VESTRA_EXPORT static std::string getLogFileName();
};

// The words of an item's script line. They are writable pointers, read again for each
// line.

/// One line feed.
VESTRA_EXPORT extern const char* NEW_LINE;
/// One blank.
VESTRA_EXPORT extern const char* SPACE;
/// "-context"
VESTRA_EXPORT extern const char* PARAM_CONTEXT;
/// "-value"
VESTRA_EXPORT extern const char* PARAM_VALUE;
/// "-key"
VESTRA_EXPORT extern const char* PARAM_KEY;
/// "-client"
VESTRA_EXPORT extern const char* PARAM_CLIENT;
/// "vestra_add_data"
VESTRA_EXPORT extern const char* TYPE_ADD_DATA;

}  // namespace Oza

#endif
